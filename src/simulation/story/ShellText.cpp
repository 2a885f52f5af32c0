#include "simulation/story/ShellText.hpp"

#include <cmath>

namespace sentrel::simulation {

namespace {

std::string quoted(const std::string& text)
{
    return "“" + text + "”";
}

std::string nameOf(ShellWindow window)
{
    return window == ShellWindow::main ? "the control panel" : "the list of alerts";
}

std::string plainNumber(double value)
{
    constexpr double mostReadable = 1e9;
    if (!(std::abs(value) < mostReadable)) {
        return value < 0.0 ? "minus a billion or less" : "a billion or more";
    }
    std::string text = std::to_string(std::round(value * 1000.0) / 1000.0);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

} // namespace

std::string describe(const UseMenu& action)
{
    if (!action.wanted.empty()) {
        return "In the menu somebody presses " + quoted(action.wanted) + ".";
    }
    return action.isOpen ? "Somebody opens the menu." : "Somebody closes the menu.";
}

std::string describe(const ClickOn& action)
{
    return "Somebody clicks on " + quoted(action.wanted) + ".";
}

std::string describe(const TypeText& action)
{
    // The text may be a secret; it is shown because the reader may see the scenario.
    return "Somebody types " + quoted(action.text) + (action.field ? " into " + quoted(*action.field) : "") + ".";
}

std::string describe(const PressKey& action)
{
    switch (action.key) {
    case ui::Key::returnKey:
        return "Somebody presses return.";
    case ui::Key::deleteKey:
        return "Somebody presses delete.";
    case ui::Key::escape:
        break;
    }
    return "Somebody presses escape.";
}

std::string describe(const MoveSlider& action)
{
    return "Somebody moves " + quoted(action.slider) + " to " + plainNumber(action.value) + ".";
}

std::string describe(const SelectRows& action)
{
    if (action.rows.empty()) {
        return "Nothing is selected any more.";
    }
    return action.rows.size() == 1 ? "Somebody selects an alert."
                                   : "Somebody selects " + std::to_string(action.rows.size()) + " alerts.";
}

std::string describe(const OpenWindow& action)
{
    return "Somebody wants to open " + nameOf(action.window) + ".";
}

std::string describe(const CloseWindow& action)
{
    return "Somebody closes " + nameOf(action.window) + ".";
}

std::string describe(const DragWindow& action)
{
    std::string text = "Somebody drags " + nameOf(action.window);
    if (action.size) {
        text += " to " + plainNumber(action.size->width) + " by " + plainNumber(action.size->height) + " points";
    }
    return text + (action.to ? " across the display." : ".");
}

std::string describe(const AnswerLoginItem& action)
{
    return action.fails ? "From now on macOS refuses to change the login items."
                        : "macOS lets the login items be changed again.";
}

std::string describe(const AnswerSavePanel& action)
{
    return action.folder ? "From now on photos are saved in " + quoted(*action.folder) + "."
                         : "From now on save panels are cancelled.";
}

} // namespace sentrel::simulation
