#include "simulation/stage/Expectation.hpp"
#include "simulation/stage/Language.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(ShellLanguage, EachActionIsASentence)
{
    const std::pair<const char*, const char*> rows[] = {
        {"{menu: Armed}", "In the menu somebody presses “Armed”."},
        {"{menu: open}", "Somebody opens the menu."},
        {"{menu: close}", "Somebody closes the menu."},
        {"{menu: \"open\"}", "In the menu somebody presses “open”."},
        {"{click: Delete}", "Somebody clicks on “Delete”."},
        {"{type: \"\"}", "Somebody types “”."},
        {"{type: {Passcode: 2468}}", "Somebody types “2468” into “Passcode”."},
        {"{press: escape}", "Somebody presses escape."},
        {"{slide: {Delay: -3}}", "Somebody moves “Delay” to -3."},
        {"{slide: {Alarm volume: 0.25}}", "Somebody moves “Alarm volume” to 0.25."},
        {"{select: [0, 2]}", "Somebody selects 2 alerts."},
        {"{select: []}", "Nothing is selected any more."},
        {"{open: alerts}", "Somebody wants to open the list of alerts."},
        {"{drag: {window: main, size: [440, 600.5]}}", "Somebody drags the control panel to 440 by 600.5 points."},
        {"{login-item: fail}", "From now on macOS refuses to change the login items."},
        {"{save-panel: cancel}", "From now on save panels are cancelled."},
        {"{save-panel: Pictures/Theft}", "From now on photos are saved in “Pictures/Theft”."},
    };
    for (const auto& [action, sentence] : rows) {
        EXPECT_EQ(told(action), sentence) << action;
    }
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
        EXPECT_THAT(refusal(step(body)), HasSubstr(part)) << body;
    }
}

TEST(ShellLanguage, SomeTextsOfAListAreExpectedInTheirOrderAndOthersNot)
{
    const auto differences = [](const std::string& expected) {
        std::vector<std::string> sentences;
        const Json state{{"window", {{"main", {{"texts", {"a", "b", "c"}}}}}}};
        const Step first = parse(step("expect: {window: {main: {texts: " + expected + "}}}")).steps.front();
        for (const Mismatch& each : mismatches(std::get<std::vector<Expectation>>(first.content).front(), state)) {
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

} // namespace
} // namespace sentrel::simulation
