#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/page/HttpRoutes.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/NodeJson.hpp"
#include "simulation/page/PageControls.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/page/PageRequests.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/page/PageWords.hpp"
#include "simulation/stage/Action.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/stage/YamlValue.hpp"
#include "support/Acting.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <regex>
#include <set>
#include <sstream>

// web/PROTOCOL.md says what the page is sent and what it may ask, no more and no less.

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using Words = std::set<std::string>;

const std::string& protocol()
{
    static const std::string text = test::contentOf(SENTREL_SOURCE_DIR "/web/PROTOCOL.md");
    return text;
}

/// From the first text to the next occurrence of the second.
std::string part(const std::string& from, const std::string& to)
{
    const auto begin = protocol().find(from);
    return begin == std::string::npos ? "" : protocol().substr(begin, protocol().find(to, begin + from.size()) - begin);
}

/// The first cells of the rows of the tables in a part, with the second.
std::vector<std::pair<std::string, std::string>> rowsOf(const std::string& text)
{
    std::vector<std::pair<std::string, std::string>> rows;
    std::istringstream lines{text};
    for (std::string line; std::getline(lines, line);) {
        if (const auto end = line.find(" | "); line.starts_with("| `") && end != std::string::npos) {
            rows.emplace_back(line.substr(2, end - 2), line.substr(end + 3));
        }
    }
    return rows;
}

Words codeIn(const std::string& text)
{
    static const std::regex code{"`([^`]*)`"};
    Words words;
    for (std::sregex_iterator found{text.begin(), text.end(), code}, none; found != none; ++found) {
        words.insert((*found)[1]);
    }
    return words;
}

/// An object as the protocol describes it: its keys, those of objects in it too, and the words that a key can have.
struct Described {
    explicit Described(const std::string& text)
    {
        std::string key;
        for (std::size_t open = text.find('"'); open != std::string::npos; open = text.find('"', open + 1)) {
            const char before = text[text.find_last_not_of(' ', open - 1)];
            const std::size_t close = text.find('"', open + 1);
            const std::string word = text.substr(open + 1, close - open - 1);
            if (word.empty()) {
                // `or ""`: a value, no key
            } else if (before == ':' || before == '|') {
                values[key].insert(word);
            } else {
                keys.insert(key = word);
            }
            open = close;
        }
    }

    Words keys;
    std::map<std::string, Words> values;
};

Described described(const std::string& room)
{
    return Described{part("| `" + room + "` |", "\n")};
}

void collectKeys(const Json& value, Words& keys)
{
    if (!value.is_structured()) {
        return; // the library takes any other value for its own only item
    }
    for (const auto& [key, inner] : value.items()) {
        if (value.is_object()) {
            keys.insert(key);
        }
        collectKeys(inner, keys);
    }
}

Words keysOf(const Json& value)
{
    Words keys;
    collectKeys(value, keys);
    return keys;
}

template <class Table> Words wordsOf(const Table& table)
{
    Words words;
    for (const auto& row : table) {
        words.emplace(row.text);
    }
    return words;
}

Words wordsOf(const std::vector<std::string_view>& list)
{
    return {list.begin(), list.end()};
}

const std::string macOfThePage = "title: Page\n"
                                 "mac: {icloud: maya, camera: built-in, music: playing, passcode: '2468'}\n"
                                 "settings: {requirePasswordForActions: false, lockScreenOnArm: true}\n"
                                 "steps:\n- {at: 1s, do: arm}\n";

/// A Mac with a story: everything that the page can show is there.
struct UsedMac {
    UsedMac()
    {
        SimulatedMac& mac = session.mac();
        mac.login.setAnswerDelay(std::nullopt);
        mac.savePanels.setAnswerDelay(std::nullopt);
        mac.alerts.setReadingTime(std::nullopt);
        EXPECT_TRUE(leaveFromEarlierRun(session, scenario));
        session.launch();
        session.clock().advance(2s);
    }

    void act(const std::string& action)
    {
        EXPECT_EQ(simulation::act(session, action), "") << action;
        session.clock().advance(2s);
    }

    TemporaryFolder disk;
    Scenario scenario = parseScenario(macOfThePage, "page.yaml");
    MacSession session{scenario.mac, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    PageFiles files;
    PageState state{session, files, "Page"};
};

TEST(Protocol, NamesTheFieldsOfEachRoom)
{
    UsedMac page;
    page.act("{menu: open}");
    Json menuBar = page.state.menuBar();
    EXPECT_FALSE(menuBar["menu"].is_null());
    menuBar["menu"] = nullptr; // a tree, described apart
    EXPECT_EQ(keysOf(menuBar), described("menuBar").keys);

    page.act("{open: alerts}");
    page.act("arm");
    page.act("unplug");
    const Json screen = page.state.screen();
    ASSERT_FALSE(screen["windows"].empty() || screen["covers"].empty() || screen["displays"].empty());
    const Words frame = Described{part("Rect is `", "` in points")}.keys;
    Words window = Described{part("Window is `", "`.")}.keys;
    Words cover = Described{part("Cover is `", "`.")}.keys;
    EXPECT_EQ(keysOf(screen["displays"]), frame);
    window.insert(frame.begin(), frame.end());
    EXPECT_EQ(keysOf(screen["windows"]), window);
    EXPECT_EQ(keysOf(screen["covers"]), cover);
    Json top = screen;
    top["displays"] = top["windows"] = top["covers"] = nullptr;
    EXPECT_EQ(keysOf(top), described("screen").keys);

    page.session.mac().iCloud.link.faults().add({cloudError(CKError::networkFailure)});
    EXPECT_EQ(keysOf(page.state.run()), described("run").keys);
    EXPECT_EQ(keysOf(page.state.hardware()), described("hardware").keys);
    EXPECT_EQ(keysOf(page.state.sound()), described("sound").keys);
    EXPECT_EQ(keysOf(page.state.cloud()), described("cloud").keys);
    EXPECT_EQ(keysOf(page.state.phone()), described("phone").keys);
}

TEST(Protocol, NamesTheFieldsOfPanelsAndOfTheStory)
{
    struct OneFile final : ports::PreviewDataSource {
        std::size_t numberOfItems() override { return 1; }
        std::filesystem::path itemAt(std::size_t) override { return SENTREL_SOURCE_DIR "/docs/alarm.jpg"; }
    } source;
    UsedMac page;
    SimulatedMac& mac = page.session.mac();
    page.act("{set: {requirePasswordForActions: true}}");
    page.act("{open: main}");
    const auto alert = page.session.mainActor().spawn(mac.alerts.runModal({0, "Alert", "Why"}));
    const auto save = page.session.mainActor().spawn(mac.savePanels.run({"Save", {}, "photo.jpg"}));
    mac.previewPanel.setControl({.accepts = [] { return true; }, .begin = [] {}, .end = [] {}});
    mac.previewPanel.setDataSource(&source);
    mac.previewPanel.makeKeyAndOrderFront();
    page.session.clock().advance(2s);
    EXPECT_EQ(keysOf(page.state.panels()), described("panels").keys);
    mac.previewPanel.setDataSource(nullptr);

    StoryLines story;
    story.open(page.scenario);
    story.perform(1.0, readAction(parseYaml("{audio-device: {remove: 73}}"), {}));
    EXPECT_EQ(keysOf(story.from(0)), described("story").keys);
}

TEST(Protocol, NamesTheRoomsOfTheState)
{
    TemporaryFolder disk;
    LiveMac mac{parseScenario(macOfThePage, "page.yaml"), disk.path(), SENTREL_SOURCE_DIR "/resources", 1,
                MacSession::storyDate};
    mac.start();
    EXPECT_EQ(answerPage(mac, "action", R"({"open": "main"})").error, "");
    const auto event = mac.listen()->next();
    ASSERT_NE(event, nullptr);
    const Json sent = Json::parse(event->substr(event->find("data: ") + 6));
    Words rooms;
    for (const auto& [room, value] : sent.items()) {
        rooms.insert(room.starts_with(PageState::contentPrefix) ? std::string{PageState::contentPrefix} + "N" : room);
    }
    Words documented;
    for (const auto& [room, value] : rowsOf(part("| key | value |", "\n\n"))) {
        documented.merge(codeIn(room));
    }
    EXPECT_EQ(rooms, documented);
}

TEST(Protocol, NamesTheWordsForEachState)
{
    const std::map<std::pair<std::string, std::string>, Words> said{
        {{"run", "process"}, wordsOf(processWords)},
        {{"menuBar", "icon"}, {"MenuBarIcon", "MenuBarIconArmed"}},
        {{"hardware", "power"}, wordsOf(powerWords)},
        {{"hardware", "lid"}, wordsOf(lidWords)},
        {{"hardware", "music"}, wordsOf(musicWords)},
        {{"hardware", "source"}, wordsOf(cameraSourceWords)},
        {{"hardware", "accelerometer"}, wordsOf(sampleWords)},
        {{"cloud", "network"}, wordsOf(networkWords)},
        {{"cloud", "account"}, wordsOf(accountWords)},
        {{"cloud", "quota"}, wordsOf(quotaWords)},
    };
    std::map<std::pair<std::string, std::string>, Words> documented;
    for (const auto& [room, value] : rowsOf(part("| key | value |", "\n\n"))) {
        for (const auto& [key, words] : Described{value}.values) {
            documented[{*codeIn(room).begin(), key}] = words;
        }
    }
    EXPECT_EQ(said, documented);
}

TEST(Protocol, NamesTheRequestsTheirWordsAndTheStatusesOfAnswers)
{
    const std::string requests = part("| request | body |", "\n\n");
    std::map<std::string, std::string> bodies;
    for (const auto& [request, body] : rowsOf(requests)) {
        if (const std::string lead = "`POST /api/"; request.starts_with(lead)) {
            bodies[request.substr(lead.size(), request.size() - lead.size() - 1)] = body;
        }
    }
    Words names;
    for (const auto& [name, body] : bodies) {
        names.insert(name);
    }
    EXPECT_EQ(wordsOf(requestNames()), names);
    const ControlWords words = controlWords();
    EXPECT_EQ(wordsOf(words.treeUses), Described{bodies["ui"]}.values["do"]);
    EXPECT_EQ(wordsOf(words.windowUses), Described{bodies["window"]}.values["do"]);
    EXPECT_EQ(wordsOf(words.panels), Described{bodies["panel"]}.values["panel"]);
    EXPECT_EQ(wordsOf(words.answers), Described{bodies["panel"]}.values["answer"]);
    for (const std::string& action : codeIn(bodies["action"])) {
        EXPECT_NO_THROW(static_cast<void>(readAction(parseYaml(action), {}))) << action;
    }

    const std::string answers = part("Answers: ", "A connection");
    static const std::regex number{"\\b[2-5][0-9][0-9]\\b"};
    std::set<int> statuses;
    for (std::sregex_iterator found{answers.begin(), answers.end(), number}, none; found != none; ++found) {
        statuses.insert(std::stoi(found->str()));
    }
    std::set<int> known;
    for (const HttpStatus& status : httpStatuses) {
        known.insert(status.number);
    }
    EXPECT_EQ(known, statuses);
}

/// A view of every kind, with every trait, and every word of its members.
ui::View everyView()
{
    using namespace ui;
    std::vector<View> views{spacer(),
                            divider(),
                            view(Form{}),
                            section("Header", {}),
                            view(SplitView{}),
                            view(TextField{}),
                            view(SecureField{}),
                            view(Progress{"Work", 0.5}),
                            view(Slider{"Slider", {}, 0.0, 1.0, 0.1, "much"})};
    for (const auto style : {Text::Style::largeTitle, Text::Style::title, Text::Style::headline, Text::Style::body,
                             Text::Style::callout, Text::Style::caption}) {
        views.push_back(text("Text", style));
    }
    for (const auto color : {Text::Color::primary, Text::Color::secondary, Text::Color::alarm}) {
        views.push_back(text("Text", Text::Style::body, color));
    }
    for (const auto role :
         {Button::Role::standard, Button::Role::prominent, Button::Role::destructive, Button::Role::cancel}) {
        views.push_back(button("Button", {}, role));
    }
    for (const auto key : {Key::returnKey, Key::deleteKey, Key::escape}) {
        views.push_back(view(Button{"Button", {}, Button::Role::standard, key, Image{}}));
    }
    const auto picture = std::make_shared<const Bytes>(Bytes{1, 2, 3});
    for (const auto source : {Image::Source::systemSymbol, Image::Source::memory}) {
        views.push_back(view(Image{source, "name", picture}));
    }
    views.push_back(view(Toggle{"Toggle", {}}));
    for (const auto mode : {List::Selection::none, List::Selection::single, List::Selection::multiple}) {
        views.push_back(view(List{mode, {}}));
    }
    for (const auto alignment : {Stack::Alignment::leading, Stack::Alignment::center, Stack::Alignment::trailing}) {
        views.push_back(verticalStack({}, 8.0, alignment));
    }
    views.push_back(horizontalStack({}));
    return verticalStack(std::move(views))
        .accessibilityLabel("Label")
        .help("Help")
        .disabled(true)
        .padding(1.0)
        .sized({1.0, 1.0, 1.0})
        .background(black)
        .attach(view(Toolbar{}, {text("Tool")}))
        .attach(view(Sheet{}, {text("Sheet")}))
        .attach(view(Dialog{Dialog::Kind::alert, "Title", "Message", {}}));
}

/// The members of each kind, and the texts that each of them had.
void collectNodes(const Json& node, std::map<std::string, std::map<std::string, Words>>& kinds)
{
    auto& members = kinds[node["kind"]];
    for (const auto& [key, value] : node.items()) {
        if (Words& texts = members[key]; value.is_string()) {
            texts.insert(value);
        }
        if (key == "children" || key == "toolbar") {
            for (const Json& inner : value) {
                collectNodes(inner, kinds);
            }
        } else if (key == "sheet" || key == "dialog") {
            collectNodes(value, kinds);
        }
    }
}

/// The words after each member's name and colon in a cell of the table of kinds.
std::map<std::string, Words> membersIn(const std::string& cell)
{
    std::map<std::string, Words> members;
    static const std::regex member{"`(\\w+)`(: (\\w+(, \\w+)*))?"};
    for (std::sregex_iterator found{cell.begin(), cell.end(), member}, none; found != none; ++found) {
        std::istringstream words{(*found)[3]};
        Words& known = members[(*found)[1]];
        for (std::string word; std::getline(words >> std::ws, word, ',');) {
            known.insert(word);
        }
    }
    return members;
}

TEST(Protocol, NamesTheMembersOfEachKindOfViewAndTheirWords)
{
    PageFiles files;
    std::map<std::string, std::map<std::string, Words>> sent;
    collectNodes(nodeJson(everyView(), files), sent);
    Words common = Described{part("`{\"id\": identity", "Hidden views")}.keys;
    Words seen;
    for (const auto& [kinds, cell] : rowsOf(part("| kind | members |", "\n\n"))) {
        const auto members = membersIn(cell);
        std::map<std::string, Words> others;
        for (const std::string& kind : codeIn(kinds)) {
            ASSERT_TRUE(sent.contains(kind)) << kind;
            for (const auto& [name, texts] : sent[kind]) {
                if (common.contains(name)) {
                    seen.insert(name);
                    continue;
                }
                others[name].insert(texts.begin(), texts.end());
            }
            sent.erase(kind);
        }
        for (auto& [name, texts] : others) {
            if (members.contains(name) && members.at(name).empty()) {
                texts.clear(); // any text
            }
        }
        EXPECT_EQ(others, members) << kinds;
    }
    EXPECT_THAT(sent, IsEmpty()) << "a kind that the protocol lacks";
    EXPECT_EQ(seen, common);
}

} // namespace
} // namespace sentrel::simulation
