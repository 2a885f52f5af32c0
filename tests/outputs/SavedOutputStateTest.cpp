#include "outputs/SavedOutputState.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace sentrel {
namespace {

const std::string wholeText = R"({"speakerDeviceID":73,"speakerVolume":0.3,"speakerWasMuted":true,)"
                              R"("previousDefaultDeviceID":91,"previousDefaultVolume":0.5,)"
                              R"("previousDefaultWasMuted":false,"switchedDefaultDevice":true})";
const SavedOutputState whole{73, 0.3F, true, 91, 0.5F, false, true};

std::string replaced(std::string text, const std::string& part, const std::string& other)
{
    const auto place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return text.replace(place, part.size(), other);
}

TEST(SavedOutputState, IsWrittenInTheOrderOfItsFieldsAndReadBackTheSame)
{
    EXPECT_EQ(textOf(encode(whole).value()), wholeText);
    EXPECT_EQ(decodeSavedOutputState(bytesOf(wholeText)), whole);

    const SavedOutputState alone{0xFFFFFFFF, 0.1F, false, {}, {}, false, false};
    const auto text = encode(alone).value();
    EXPECT_EQ(textOf(text), R"({"speakerDeviceID":4294967295,"speakerVolume":0.1,"speakerWasMuted":false,)"
                            R"("previousDefaultWasMuted":false,"switchedDefaultDevice":false})");
    EXPECT_EQ(decodeSavedOutputState(text), alone);

    SavedOutputState broken = whole;
    broken.speakerVolume = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(encode(broken), std::nullopt);
}

TEST(SavedOutputState, TakesNullForAnAbsentValueAndIgnoresWhatItDoesNotKnow)
{
    auto text = replaced(wholeText, "91", "null");
    text = replaced(text, "0.5", "null");
    text = replaced(text, "{", R"({"later":[{}],)");
    const SavedOutputState expected{73, 0.3F, true, {}, {}, false, true};
    EXPECT_EQ(decodeSavedOutputState(bytesOf(text)), expected);
}

TEST(SavedOutputState, IsRefusedWholeUnlessEveryFieldIsRight)
{
    const std::vector<std::pair<std::string, std::string>> faults{
        {"\"speakerDeviceID\":73,", ""},
        {"\"switchedDefaultDevice\"", "\"switched\""},
        {"73", "-1"},
        {"73", "4294967296"},
        {"73", "73.5"},
        {"73", "\"73\""},
        {"73", "null"},
        {"91", "\"91\""},
        {"91", "-91"},
        {"0.3", "1e300"},
        {"0.3", "true"},
        {"0.5", "[0.5]"},
        {"0.5", "1e39"},
        {"true", "1"},
        {"false", "\"false\""},
        {"true}", "true"},
        {"{", "[{"},
        {"0.3", "NaN"},
    };
    for (const auto& [part, other] : faults) {
        const auto text = replaced(wholeText, part, other);
        EXPECT_EQ(decodeSavedOutputState(bytesOf(text)), std::nullopt) << text;
    }
    for (const std::string& text :
         {std::string{}, std::string{"73"}, std::string(100'000, '['), std::string{"\xFF\0", 2}}) {
        EXPECT_EQ(decodeSavedOutputState(bytesOf(text)), std::nullopt);
    }
}

} // namespace
} // namespace sentrel
