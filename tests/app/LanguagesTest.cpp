#include "simulation/mac/language/StringsFile.hpp"
#include "support/Files.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace sentrel {
namespace {

namespace fs = std::filesystem;
using test::contentOf;
using testing::ElementsAre;
using testing::IsEmpty;

const fs::path root{SENTREL_SOURCE_DIR};
constexpr const char* languages[] = {"de", "en", "es", "fr", "ja", "zh-Hans"};

simulation::StringsTable tableOf(const std::string& language, const char* name = "Localizable.strings")
{
    return simulation::parseStringsFile(bytesOf(contentOf(root / "resources" / (language + ".lproj") / name)));
}

std::vector<std::string> matchesOf(const std::string& text, const char* pattern)
{
    const std::regex expression{pattern};
    std::vector<std::string> found;
    for (std::sregex_iterator match{text.begin(), text.end(), expression}; match != std::sregex_iterator{}; ++match) {
        found.push_back(match->str(match->size() - 1));
    }
    return found;
}

/// The text of a literal in a source.
std::string unescaped(const std::string& literal)
{
    return std::regex_replace(literal, std::regex{R"(\\n)"}, "\n");
}

/// The literals between a parenthesis and the one that closes it; adjacent ones are one text.
std::vector<std::string> literalsInCall(const std::string& source, std::size_t opening)
{
    std::vector<std::string> texts;
    bool isAdjacent = false;
    int depth = 0;
    for (std::size_t i = opening; i < source.size(); ++i) {
        const char c = source[i];
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (depth == 0) {
            break;
        }
        if (c == '"') {
            const std::size_t start = i + 1;
            while (source[++i] != '"') {
                i += source[i] == '\\' ? 1U : 0U;
            }
            const std::string text = unescaped(source.substr(start, i - start));
            if (isAdjacent) {
                texts.back() += text;
            } else {
                texts.push_back(text);
            }
        }
        isAdjacent = (isAdjacent || c == '"') && (c == '"' || std::isspace(static_cast<unsigned char>(c)) != 0);
    }
    return texts;
}

TEST(Languages, EveryTableIsThereSoundAndHasEachTextOnce)
{
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator{root / "resources"}) {
        if (entry.path().extension() == ".lproj") {
            found.push_back(entry.path().stem().string());
        }
    }
    std::ranges::sort(found);
    EXPECT_THAT(found, testing::ElementsAreArray(languages));
    for (const std::string language : languages) {
        const auto table = tableOf(language);
        EXPECT_TRUE(table.damages.empty()) << language << " line " << table.damages.front().line;
        const auto content = contentOf(root / "resources" / (language + ".lproj") / "Localizable.strings");
        EXPECT_EQ(matchesOf(content, R"#(\n(".*" = ".*";))#").size(), table.texts.size()) << language;
    }
}

TEST(Languages, EveryTableTranslatesWhatTheEnglishOneHasWithTheSamePlaceholders)
{
    constexpr const char* specifier = R"((%(?:lld|@|d|%)))";
    // Texts that read the same in every language; any other such text was forgotten.
    const std::set<std::string> sameEverywhere{"Sentrel", "iCloud", "%lld"};
    const auto english = tableOf("en");
    for (const std::string language : {"de", "es", "fr", "ja", "zh-Hans"}) {
        const auto table = tableOf(language);
        std::size_t untranslated = 0;
        for (const auto& [key, text] : english.texts) {
            const auto found = table.texts.find(key);
            ASSERT_NE(found, table.texts.end()) << language << " lacks " << key;
            EXPECT_EQ(matchesOf(found->second, specifier), matchesOf(key, specifier)) << language << ": " << key;
            EXPECT_EQ(std::ranges::count(found->second, '\n'), std::ranges::count(key, '\n'))
                << language << ": " << key;
            EXPECT_FALSE(found->second.empty());
            untranslated += found->second == key && !sameEverywhere.contains(key) ? 1U : 0U;
        }
        EXPECT_EQ(table.texts.size(), english.texts.size()) << language << " has texts that nobody shows";
        EXPECT_LE(untranslated, 3U) << language; // "Options", "Code", "OK" and the like
    }
}

TEST(Languages, EveryTextThatTheSystemShowsOfTheBundleIsTranslated)
{
    constexpr const char* pattern =
        R"(<key>(NS\w+UsageDescription|NSHumanReadableCopyright)</key>\s*<string>([^<]*)</string>)";
    const std::string list = contentOf(root / "src" / "mac" / "Info.plist.in");
    simulation::StringsTable prompts;
    const std::regex expression{pattern};
    for (std::sregex_iterator match{list.begin(), list.end(), expression}; match != std::sregex_iterator{}; ++match) {
        prompts.texts.emplace(match->str(1), match->str(2));
    }
    EXPECT_FALSE(prompts.texts.empty());
    EXPECT_EQ(tableOf("en", "InfoPlist.strings").texts, prompts.texts);
    for (const std::string language : {"de", "es", "fr", "ja", "zh-Hans"}) {
        const auto table = tableOf(language, "InfoPlist.strings");
        EXPECT_TRUE(table.damages.empty()) << language;
        EXPECT_EQ(table.texts.size(), prompts.texts.size()) << language;
        for (const auto& [key, text] : table.texts) {
            EXPECT_TRUE(prompts.texts.contains(key) && prompts.texts.at(key) != text) << language << ": " << key;
        }
    }
}

TEST(Languages, TheEnglishTableHasExactlyTheTextsThatTheProductShows)
{
    const auto english = tableOf("en");
    std::set<std::string> unknown;
    std::string everything;
    for (const auto& entry : fs::recursive_directory_iterator{root / "src"}) {
        const auto extension = entry.path().extension();
        if (extension != ".cpp" && extension != ".hpp" && extension != ".mm") {
            continue;
        }
        const std::string source = contentOf(entry.path());
        constexpr std::string_view call = "localized(";
        for (auto at = source.find(call); at != source.npos; at = source.find(call, at + 1)) {
            for (const std::string& text : literalsInCall(source, at + call.size() - 1)) {
                if (!english.texts.contains(text)) {
                    unknown.insert(entry.path().filename().string() + ": " + text);
                }
            }
        }
        // Also texts that are looked up by a variable stand somewhere as a literal; those that are broken over lines
        // are joined.
        everything += std::regex_replace(source, std::regex{R"("\s*\n\s*")"}, "");
    }
    EXPECT_THAT(unknown, IsEmpty());
    for (const auto& [key, text] : english.texts) {
        const auto literal = "\"" + std::regex_replace(key, std::regex{"\n"}, "\\n") + "\"";
        EXPECT_NE(everything.find(literal), everything.npos) << key << " is shown nowhere";
    }
}

} // namespace
} // namespace sentrel
