#include "simulation/stage/Action.hpp"
#include "simulation/stage/ExpectationReader.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <sstream>

namespace sentrel::simulation {
namespace {

using Words = std::set<std::string>;

Words wordsOf(const std::string& text)
{
    static const std::regex quoted{"`([A-Za-z][A-Za-z-]*)`"};
    Words words;
    for (std::sregex_iterator match{text.begin(), text.end(), quoted}; match != std::sregex_iterator{}; ++match) {
        words.insert(match->str(1));
    }
    return words;
}

Words setOf(const std::vector<std::string_view>& names)
{
    return {names.begin(), names.end()};
}

/// The page that describes the scenario language, by its sections.
class LanguagePage {
public:
    /// The words in the first column of the first table whose head starts so.
    [[nodiscard]] Words firstColumn(const std::string& section, const std::string& head) const
    {
        Words words;
        std::istringstream lines{text_.substr(text_.find("\n## " + section))};
        std::string line;
        while (std::getline(lines, line) && !line.starts_with(head)) {
        }
        while (std::getline(lines, line) && line.starts_with('|')) {
            words.merge(wordsOf(line.substr(0, line.find('|', 1))));
        }
        return words;
    }

    [[nodiscard]] Words after(const std::string& mark) const
    {
        const auto begin = text_.find(mark);
        return wordsOf(text_.substr(begin, text_.find("\n\n", begin) - begin));
    }

private:
    std::string text_ = test::contentOf(SENTREL_SOURCE_DIR "/docs/scenarios.md");
};

TEST(Documents, NameEveryWordOfTheScenarioLanguageAndNoOther)
{
    const LanguagePage page;
    EXPECT_EQ(page.firstColumn("`mac`", "| key"), setOf(macNames()));
    EXPECT_EQ(page.firstColumn("`expect`", "| key"), setOf(expectationNames()));

    Words actions;
    for (const char* section : {"`do`: actions without", "`do`: hardware", "`do`: iCloud", "`do`: a person"}) {
        actions.merge(page.firstColumn(section, "| word"));
    }
    EXPECT_EQ(actions, setOf(actionNames()));

    const TemporaryFolder disk;
    MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    Words ports;
    for (const auto& [port, faults] : session.mac().faults()) {
        ports.insert(port);
    }
    EXPECT_EQ(page.after("Ports: `power-sources`"), ports);
}

TEST(Documents, TheManualExplainsNoticesThatTheProductHas)
{
    const std::string manual = test::contentOf(SENTREL_SOURCE_DIR "/docs/manual.md");
    const std::string texts = test::contentOf(SENTREL_SOURCE_DIR "/resources/en.lproj/Localizable.strings");
    static const std::regex explained{"\n\\| “([^”]+)” \\|"};
    int found = 0;
    for (std::sregex_iterator match{manual.begin(), manual.end(), explained}, end; match != end; ++match, ++found) {
        // A notice of two lines is quoted by its first.
        const std::string text = "\n\"" + match->str(1);
        EXPECT_TRUE(texts.find(text + '"') != std::string::npos || texts.find(text + "\\n") != std::string::npos)
            << match->str(1);
    }
    EXPECT_GE(found, 25);
}

} // namespace
} // namespace sentrel::simulation
