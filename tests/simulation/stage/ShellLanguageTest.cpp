#include "simulation/stage/Expectation.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/story/ShellText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Scenario parseShell(const std::string& body)
{
    return parseScenario("steps:\n- {at: 0s, " + body + "}\n", "talk.yaml");
}

template <class Kind> Kind action(const std::string& text)
{
    return std::get<Kind>(std::get<Action>(parseShell("do: " + text).steps.front().content));
}

std::string shellRefusal(const std::string& body)
{
    try {
        static_cast<void>(parseShell(body));
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(ShellLanguage, NamesWhatAPersonDoes)
{
    EXPECT_EQ(action<UseMenu>("{menu: Armed}").wanted, "Armed");
    EXPECT_TRUE(action<UseMenu>("{menu: open}").wanted.empty());
    EXPECT_FALSE(action<UseMenu>("{menu: close}").isOpen);
    EXPECT_EQ(action<UseMenu>("{menu: \"open\"}").wanted, "open") << "in quotes it is a text";
    EXPECT_EQ(action<ClickOn>("{click: Delete}").wanted, "Delete");
    EXPECT_EQ(action<TypeText>("{type: \"\"}").text, "");
    EXPECT_EQ(action<TypeText>("{type: {Passcode: 2468}}").field, "Passcode");
    EXPECT_EQ(action<TypeText>("{type: {Passcode: 2468}}").text, "2468");
    EXPECT_EQ(action<PressKey>("{press: escape}").key, ui::Key::escape);
    EXPECT_EQ(action<MoveSlider>("{slide: {Delay: -3}}").value, -3.0);
    EXPECT_THAT(action<SelectRows>("{select: [0, 2]}").rows, ElementsAre(0, 2));
    EXPECT_THAT(action<SelectRows>("{select: []}").rows, IsEmpty());
    EXPECT_EQ(action<OpenWindow>("{open: alerts}").window, ShellWindow::alerts);
    const auto drag = action<DragWindow>("{drag: {window: main, size: [-1, 1e300]}}");
    EXPECT_EQ(drag.size, (ports::Size{-1.0, 1e300}));
    EXPECT_EQ(drag.to, std::nullopt);
    EXPECT_TRUE(action<AnswerLoginItem>("{login-item: fail}").fails);
    EXPECT_EQ(action<AnswerSavePanel>("{save-panel: cancel}").folder, std::nullopt);
    EXPECT_EQ(action<AnswerSavePanel>("{save-panel: Pictures/Theft}").folder, "Pictures/Theft");
}

TEST(ShellLanguage, RefusesWhatMakesNoSense)
{
    const std::pair<const char*, const char*> rows[] = {
        {"do: {open: mian}", "did you mean 'main'"},
        {"do: {select: [-1]}", "the place of a row"},
        {"do: {select: 1}", "'select'"},
        {"do: {type: {a: b, c: d}}", "one key"},
        {"do: {slide: {Delay: fast}}", "where the slider goes"},
        {"do: {drag: {window: main}}", "'size', 'to' or both"},
        {"do: {drag: {size: [1, 2]}}", "needs 'window'"},
        {"do: {drag: {window: main, size: [1]}}", "two numbers"},
        {"do: {press: del}", "delete"},
        {"do: {save-panel: /etc}", "on the Mac's disk"},
        {"do: {save-panel: a/../../b}", "on the Mac's disk"},
        {"do: {login-item: maybe}", "answer"},
        {"do: menu", "{menu: Armed}"},
        {"expect: {window: {man: {visible: true}}}", "did you mean 'main'"},
        {"expect: {window: {main: {texts: {has: [a]}}}}", "has"},
        {"expect: {icon: MenuBarIconArmd}", "MenuBarIconArmed"},
        {"expect: {quit: asking}", "asking"},
    };
    for (const auto& [body, part] : rows) {
        EXPECT_THAT(shellRefusal(body), HasSubstr(part)) << body;
    }
}

TEST(ShellLanguage, SomeTextsOfAListAreExpectedInTheirOrderAndOthersNot)
{
    const auto differences = [](const std::string& expected) {
        std::vector<std::string> sentences;
        const Json state{{"window", {{"main", {{"texts", {"a", "b", "c"}}}}}}};
        const auto step = parseShell("expect: {window: {main: {texts: " + expected + "}}}").steps.front();
        for (const Mismatch& each : mismatches(std::get<std::vector<Expectation>>(step.content).front(), state)) {
            sentences.push_back(sentence(each));
        }
        return sentences;
    };
    EXPECT_THAT(differences("[a, c]"), IsEmpty());
    EXPECT_THAT(differences("[]"), IsEmpty());
    EXPECT_THAT(differences("{lacks: [d]}"), IsEmpty());
    const std::string start = "expected window.main.texts to be a list ";
    const std::string list = R"(, but it is ["a","b","c"])";
    EXPECT_THAT(differences("[c, a]"), ElementsAre(start + "with \"a\" in this place" + list));
    EXPECT_THAT(differences("[a, a]"), ElementsAre(start + "with \"a\" in this place" + list));
    EXPECT_THAT(differences("{contains: [x, b], lacks: [c]}"),
                ElementsAre(start + "with \"x\"" + list, start + "without \"c\"" + list));
}

TEST(ShellLanguage, EachActionIsASentence)
{
    EXPECT_EQ(describe(UseMenu{"Armed"}), "In the menu somebody presses “Armed”.");
    EXPECT_EQ(describe(MoveSlider{"Alarm volume", 0.25}), "Somebody moves “Alarm volume” to 0.25.");
    EXPECT_EQ(describe(DragWindow{ShellWindow::main, ports::Size{440, 600.5}, std::nullopt}),
              "Somebody drags the control panel to 440 by 600.5 points.");
    EXPECT_EQ(describe(SelectRows{{0, 1}}), "Somebody selects 2 alerts.");
}

} // namespace
} // namespace sentrel::simulation
