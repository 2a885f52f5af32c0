#include "foundation/Json.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace sentrel {
namespace {

std::optional<Json> jsonOf(std::string_view text)
{
    return parseJson(bytesOf(text));
}

TEST(Json, WritesNumbersInTheirShortestForm)
{
    const Json value = {{"whole", 3.0}, {"tenth", 0.1}, {"single", jsonNumber(0.3F)}, {"date", 785000000.123456}};
    EXPECT_EQ(encodeJson(value), R"({"whole":3,"tenth":0.1,"single":0.3,"date":785000000.123456})");
}

TEST(Json, RefusesToWriteWhatJsonHasNoTextFor)
{
    for (const double number : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW((void)encodeJson(Json{{"number", number}}), JsonEncodingError);
    }
    EXPECT_THROW((void)encodeJson(jsonNumber(std::numeric_limits<float>::infinity())), JsonEncodingError);
}

TEST(Json, MendsTextThatIsNotUtf8WhenWriting)
{
    EXPECT_EQ(encodeJson(Json{{"name", "a\xFF\"\n"}}), "{\"name\":\"a\xEF\xBF\xBD\\\"\\n\"}");
}

TEST(Json, RefusesWhatIsNoDocument)
{
    for (const std::string_view text :
         {"", "{", "{\"a\":}", "nul", "\"\\", "\"\xC3\x28\"", "{\"a\":1}}", "[1,]", "-", "\x00"}) {
        EXPECT_EQ(jsonOf(text), std::nullopt) << text;
    }
}

TEST(Json, RefusesDeepNestingButNotBracketsInText)
{
    EXPECT_NE(jsonOf(std::string(512, '[') + std::string(512, ']')), std::nullopt);
    EXPECT_EQ(jsonOf(std::string(513, '[') + std::string(513, ']')), std::nullopt);
    EXPECT_EQ(jsonOf(std::string(5'000'000, '[')), std::nullopt);
    EXPECT_NE(jsonOf("[\"\\\"" + std::string(1000, '[') + "\"]"), std::nullopt);
}

TEST(Json, ANumberTooLargeCostsOnlyItsOwnField)
{
    const auto value = jsonOf(R"({"a":1e400,"b":-1e999,"tiny":1e-400,"text":"1e400","c":2})");
    ASSERT_NE(value, std::nullopt);
    EXPECT_TRUE(isAbsent(*value, "a"));
    EXPECT_TRUE(isAbsent(*value, "b"));
    EXPECT_EQ(doubleMember(*value, "tiny"), 0.0);
    EXPECT_EQ(textMember(*value, "text"), "1e400");
    EXPECT_EQ(doubleMember(*value, "c"), 2.0);
}

TEST(Json, MembersAreReadByTheirOwnTypeOnly)
{
    const Json object = *jsonOf(R"({"yes":true,"one":1,"half":0.5,"minus":-1,"big":4294967296,"top":4294967295,
                                   "wide":1e39,"text":"1","null":null})");
    EXPECT_EQ(boolMember(object, "yes"), true);
    EXPECT_EQ(boolMember(object, "one"), std::nullopt);
    EXPECT_EQ(doubleMember(object, "one"), 1.0);
    EXPECT_EQ(doubleMember(object, "yes"), std::nullopt);
    EXPECT_EQ(doubleMember(object, "text"), std::nullopt);
    EXPECT_EQ(floatMember(object, "half"), 0.5F);
    EXPECT_EQ(floatMember(object, "wide"), std::nullopt);
    EXPECT_EQ(uint32Member(object, "top"), 4294967295U);
    for (const std::string_view key : {"half", "minus", "big", "null", "missing"}) {
        EXPECT_EQ(uint32Member(object, key), std::nullopt) << key;
    }
    EXPECT_EQ(boolMember(*jsonOf("[true]"), "yes"), std::nullopt);
}

} // namespace
} // namespace sentrel
