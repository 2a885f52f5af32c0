#include "simulation/mac/language/IcuLanguage.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace sentrel::simulation {
namespace {

namespace fs = std::filesystem;

struct LanguageTest : testing::Test {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    EventLog log{scheduler};
    TemporaryFolder resources;

    void put(const std::string& folder, std::string_view content) const
    {
        fs::create_directories(resources.path() / folder);
        std::ofstream{resources.path() / folder / "Localizable.strings", std::ios::binary} << content;
    }

    bool contains(const std::string& locale, std::string_view text, std::string_view part)
    {
        return IcuLanguage{resources.path(), log, locale}.containsIgnoringCase(text, part);
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

TEST_F(LanguageTest, ATextWithoutATableOrAnEntryIsItsKey)
{
    put("de.lproj", "\"Armed\" = \"Scharf\";");
    EXPECT_EQ(IcuLanguage(resources.path(), log, "de").localized("Armed"), "Scharf");
    EXPECT_EQ(IcuLanguage(resources.path(), log, "de_AT").localized("Armed"), "Scharf");
    EXPECT_EQ(IcuLanguage(resources.path(), log, "de").localized("Disarmed"), "Disarmed");
    EXPECT_EQ(IcuLanguage(resources.path(), log, "fr").localized("Armed"), "Armed");
    EXPECT_EQ(IcuLanguage(resources.path() / "fr.lproj", log, "../de").localized("Armed"), "Armed");
    EXPECT_EQ(IcuLanguage(resources.path(), log, "").localized("Armed"), "Armed");
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

TEST_F(LanguageTest, CountsCharactersAsAPersonSeesThem)
{
    const std::pair<std::string_view, std::size_t> cases[] = {
        {"", 0},
        {"abcd", 4},
        {"äöü", 3},
        {"e\u0301e\u0301", 2},             // accents of their own
        {"👍🏽👍", 2},                     // a skin tone
        {"👨\u200D👩\u200D👧\u200D👦", 1}, // a family
        {"🇩🇪🇫🇷🇯🇵", 3},                     // flags of two letters each
        {"각\u1100\u1161\u11A8", 2},       // a syllable, whole and in parts
        {"\r\n", 1},
        {std::string_view{"a\0b", 3}, 3},
        {"\xFF\xFE", 2},
    };
    IcuLanguage language{resources.path(), log};
    for (const auto& [text, count] : cases) {
        EXPECT_EQ(language.characterCount(text), count) << text;
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

TEST_F(LanguageTest, TheEnglishTableIsSoundAndSaysWhatItsKeysSay)
{
    const auto file = fs::path{SENTREL_SOURCE_DIR} / "resources" / "en.lproj" / "Localizable.strings";
    std::ifstream stream{file, std::ios::binary};
    const auto table = parseStringsFile(Bytes{std::istreambuf_iterator<char>{stream}, {}});
    EXPECT_TRUE(table.damages.empty());
    EXPECT_GE(table.texts.size(), 16U);
    for (const auto& [key, text] : table.texts) {
        EXPECT_EQ(key, text);
    }
}

TEST_F(LanguageTest, CaseIsIgnoredByTheRulesOfTheLocale)
{
    struct Case {
        const char* locale;
        const char* text;
        const char* part;
        bool isContained;
    };
    const Case cases[] = {
        {"en", "MacBook Pro Speakers", "speaker", true},
        {"en", "MacBook Pro Speakers", "headphone", false},
        {"en", "", "a", false},
        {"en", "abc", "", false},
        {"en", "GRÖSSE", "größe", true},
        {"en", "Caf\u00E9", "CAFE\u0301", true},
        {"en", "caf\u00E9", "cafe", false},
        {"en", "KILIM", "kilim", true},
        {"en", "\xFFspeaker\xC3", "SPEAKER", true},
        {"tr", "KILIM", "kilim", false},
        {"tr_TR", "KILIM", "kılım", true},
        {"tr", "BUİLT-İN", "built-in", true},
        {"az-AZ", "SPEAKERI", "speakeri", false},
        {"el", "ΟΔΟΣ", "οδος", true},
    };
    for (const auto& [locale, text, part, isContained] : cases) {
        EXPECT_EQ(contains(locale, text, part), isContained) << locale << ": " << text << ", " << part;
    }
}

} // namespace
} // namespace sentrel::simulation
