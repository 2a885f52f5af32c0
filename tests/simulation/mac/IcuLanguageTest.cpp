#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/EventLog.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

struct LanguageTest : testing::Test {
    test::VirtualMachine machine;
    EventLog log{machine.scheduler};
    TemporaryFolder resources;

    void put(const std::string& folder, std::string_view content) const
    {
        test::put(resources.path() / folder / "Localizable.strings", content);
    }
};

StringsTable parse(std::string_view text)
{
    return parseStringsFile(bytesOf(text));
}

TEST(StringsFile, ReadsEntriesCommentsAndEscapes)
{
    const auto table = parse("/* a \"comment\" = \"x\"; */ \"Armed\"=\"Scharf\"; // \"no\" = \"entry\";\r\n"
                             "\"key\" = \"a\\n\\t\\\"b\\\"\\\\\"\n;\n"
                             "\"two\nlines\" = \"Grüße\";\n\"Armed\" = \"Bereit\";");
    const std::map<std::string, std::string, std::less<>> expected{
        {"Armed", "Bereit"}, {"key", "a\n\t\"b\"\\"}, {"two\nlines", "Grüße"}};
    EXPECT_EQ(table.texts, expected);
    EXPECT_TRUE(table.damages.empty());
}

TEST(StringsFile, ADamagedEntryCostsItselfAndIsToldWithItsLine)
{
    struct Case {
        const char* damaged;
        std::string_view problem;
    };
    const Case cases[] = {
        {"\"a\" = \"b\"", "a semicolon is missing"},           {"\"a\" \"b\";", "an equals sign is missing"},
        {"\"a\" = ;", "a text in quotation marks is missing"}, {"\xFF\xFF", "a text in quotation marks is missing"},
        {"\"a\" = \"\\q\";", "an escape isn't known"},         {"\"a\" = \"b;", "a semicolon is missing"},
    };
    for (const auto& [damaged, problem] : cases) {
        const auto table = parse("\"first\" = \"1\";\r\n\n" + std::string{damaged} + "\n\"last\" = \"2\";\n");
        EXPECT_EQ(table.texts.size(), 2U) << damaged;
        EXPECT_TRUE(table.texts.contains("first") && table.texts.contains("last")) << damaged;
        ASSERT_EQ(table.damages.size(), 1U) << damaged;
        EXPECT_EQ(table.damages[0].line, 3U) << damaged;
        EXPECT_EQ(table.damages[0].problem, problem) << damaged;
    }
    for (const char* text : {"\"", "\"a", "\"a\\", "/", "/*", "a", "\"a\" =", "\"a\" = \"b\"; /*"}) {
        EXPECT_EQ(parse(text).damages.size(), 1U) << text;
    }
}

TEST_F(LanguageTest, TheNearestTableServesALocaleAndEnglishTheRest)
{
    put("en.lproj", "\"Armed\" = \"armed\";");
    put("zh-Hans.lproj", "\"Armed\" = \"已布防\";");
    put("pt-BR.lproj", "\"Armed\" = \"Armado\";");
    const std::pair<const char*, const char*> cases[] = {
        {"zh-Hans", "已布防"}, {"zh_CN", "已布防"}, {"zh-Hans-SG", "已布防"}, {"zh", "已布防"}, {"zh-TW", "armed"},
        {"pt-BR", "Armado"},   {"pt-PT", "armed"},  {"nl", "armed"},          {"", "armed"},    {"../zh-Hans", "armed"},
    };
    IcuLanguage language{resources.path(), log};
    for (const auto& [locale, text] : cases) {
        language.setLocale(locale);
        EXPECT_EQ(language.localized("Armed"), text) << locale;
    }
}

TEST_F(LanguageTest, ADamagedTableIsNotedOnceAndUsedAsFarAsItIsGood)
{
    put("de.lproj", "\"Armed\" = \"Scharf\"\n\"Disarmed\" = \"Unscharf\";");
    IcuLanguage language{resources.path(), log, "de"};
    log.observe([&](const Event&) { EXPECT_EQ(language.localized("Disarmed"), "Unscharf"); });
    EXPECT_EQ(log.size(), 0U) << "nothing is read before it is needed";
    EXPECT_EQ(language.localized("Armed"), "Armed");
    EXPECT_EQ(language.localized("Disarmed"), "Unscharf");
    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(jsonLine(log.events()[0]),
              R"({"at": 0, "event": "localization.damaged", "file": "de.lproj/Localizable.strings", "line": 1, )"
              R"("problem": "a semicolon is missing"})");
}

TEST_F(LanguageTest, TheEnglishTableSaysWhatItsKeysSay)
{
    const auto table = parse(test::contentOf(SENTREL_SOURCE_DIR "/resources/en.lproj/Localizable.strings"));
    EXPECT_GE(table.texts.size(), 16U);
    for (const auto& [key, text] : table.texts) {
        EXPECT_EQ(key, text);
    }
}

TEST_F(LanguageTest, CaseIsIgnoredByTheRulesOfTheLocale)
{
    const auto contains = [&](const char* locale, const char* text, const char* part) {
        return IcuLanguage{resources.path(), log, locale}.containsIgnoringCase(text, part);
    };
    EXPECT_TRUE(contains("en", "Caf\u00E9", "CAFE\u0301"));
    EXPECT_FALSE(contains("en", "caf\u00E9", "cafe"));
    EXPECT_TRUE(contains("en", "\xFFspeaker\xC3", "SPEAKER"));
    EXPECT_TRUE(contains("en", "KILIM", "kilim"));
    EXPECT_FALSE(contains("tr", "KILIM", "kilim"));
    EXPECT_TRUE(contains("tr_TR", "BUİLT-İN", "built-in"));
    EXPECT_FALSE(contains("az-AZ", "SPEAKERI", "speakeri"));
    EXPECT_TRUE(contains("el", "ΟΔΟΣ", "οδος"));
}

} // namespace
} // namespace sentrel::simulation
