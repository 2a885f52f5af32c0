#include "simulation/stage/Expectation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> differences(const std::string& key, const Json& expected, const Json& actual)
{
    std::vector<std::string> sentences;
    for (const Mismatch& each : mismatches({key, expected, 7}, Json{{key, actual}})) {
        EXPECT_EQ(each.line, 7);
        sentences.push_back(sentence(each));
    }
    return sentences;
}

TEST(Expectation, NumbersMatchWithinAMillionth)
{
    EXPECT_THAT(differences("volume", 0.3, 0.30000001192092896), IsEmpty());
    EXPECT_THAT(differences("volume", 1, 1.0), IsEmpty());
    EXPECT_THAT(differences("volume", 0.3, 0.300002), ElementsAre("expected volume to be 0.3, but it is 0.300002"));
    EXPECT_THAT(differences("volume", 0.3, std::numeric_limits<double>::quiet_NaN()),
                ElementsAre("expected volume to be 0.3, but it is a number that isn't finite"));
    EXPECT_THAT(differences("photo", true, 1), ElementsAre("expected photo to be true, but it is 1"));
}

TEST(Expectation, OnlyTheMembersThatAreExpectedCountAndOnlyTheWrongOnesAreNamed)
{
    const Json devices =
        Json::parse(R"({"73": {"volume": 0.85, "muted": false}, "91": {"volume": 0.5, "muted": true}})");
    EXPECT_THAT(differences("devices", Json::parse(R"({"91": {"muted": true}})"), devices), IsEmpty());
    EXPECT_THAT(differences("devices", Json::parse(R"({"73": {"volume": 0.3, "muted": true}, "91": {"volume": 0.5}})"),
                            devices),
                ElementsAre("expected devices.73.volume to be 0.3, but it is 0.85",
                            "expected devices.73.muted to be true, but it is false"));
}

TEST(Expectation, NullMatchesNothingAndAbsentMembersOnly)
{
    EXPECT_THAT(differences("sound", nullptr, nullptr), IsEmpty());
    EXPECT_THAT(differences("devices", Json::parse(R"({"91": null})"), Json::object()), IsEmpty());
    EXPECT_THAT(differences("sound", nullptr, Json::parse(R"({"mode":"tone"})")),
                ElementsAre(R"(expected sound to be null, but it is {"mode":"tone"})"));
    EXPECT_THAT(differences("lastAlert", Json::parse(R"({"photo": false})"), nullptr),
                ElementsAre(R"(expected lastAlert to be {"photo":false}, but it is null)"));
    EXPECT_THAT(differences("devices", Json::parse(R"({"91": {"muted": true}})"), Json::object()),
                ElementsAre(R"(expected devices.91 to be {"muted":true}, but it is not there)"));
}

TEST(Expectation, ListsMatchWhole)
{
    EXPECT_THAT(differences("alertReasons", {"unplugged", "motion"}, {"unplugged", "motion"}), IsEmpty());
    EXPECT_THAT(differences("alertReasons", {"unplugged"}, {"unplugged", "motion"}),
                ElementsAre(R"(expected alertReasons to be ["unplugged"], but it is ["unplugged","motion"])"));
}

TEST(Expectation, OfSomethingThatTheStateDoesNotKnowNeverHolds)
{
    EXPECT_EQ(mismatches({"cover", nullptr, 3}, Json::object()).size(), 1U);
}

} // namespace
} // namespace sentrel::simulation
