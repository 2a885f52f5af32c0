#include "simulation/stage/ShellState.hpp"

#include "ports/WindowConstants.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/Person.hpp"
#include "ui/Description.hpp"
#include "ui/Node.hpp"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace sentrel::simulation {

namespace {

constexpr std::string_view armedIcon = "MenuBarIconArmed";
constexpr std::string_view stopButton = "stopAlarm"; // in the menu

/// The window's state; a window that doesn't exist yet or any more is not visible.
Json windowOf(const SimulatedDisplays& displays, ShellWindow wanted)
{
    const auto window = displays.window(identifierOf(wanted));
    Json json{{"visible", false}, {"size", nullptr}, {"texts", Json::array()}};
    if (!window) {
        return json;
    }
    const ports::Rectangle content = contentOf(*window, window->frame);
    json["visible"] = window->isVisible;
    json["size"] = {content.width, content.height};
    if (window->isVisible) {
        json["texts"] = ui::visibleTexts(window->content);
    }
    return json;
}

void addText(Json& texts, const std::string& text)
{
    if (!text.empty()) {
        texts.push_back(text);
    }
}

/// The open questions and notices, in windows and in panels of their own.
Json dialogsOf(SimulatedMac& mac)
{
    Json texts = Json::array();
    for (const WindowState& window : mac.displays.windows()) {
        for (const ui::Node& node : ui::nodesOf(window.content)) {
            if (const auto* const dialog = ui::elementOf<ui::Dialog>(*node.view)) {
                addText(texts, dialog->title);
                addText(texts, dialog->message);
            }
        }
    }
    if (const auto alert = mac.alerts.open()) {
        addText(texts, alert->content.messageText);
        addText(texts, alert->content.informativeText);
    }
    return texts;
}

std::string_view nameOf(MacAppDelegate::QuitState state)
{
    return state == MacAppDelegate::QuitState::running ? "running" : "asked";
}

/// Adds whether the item shows the product as armed, and whether its menu offers to stop an alarm.
void addItem(Json& state, const std::optional<SimulatedStatusBar::Item>& item)
{
    state["icon"] = item ? Json(item->image) : Json(nullptr);
    state["menu"] = item && item->isMenuOpen ? Json(ui::visibleTexts(item->menu)) : Json(nullptr);
    state["isArmed"] = item && item->image == armedIcon;
    state["isAlarmActive"] = item && ui::find(item->menu, stopButton).has_value();
}

} // namespace

void addShell(Json& state, MacSession& session)
{
    SimulatedMac& mac = session.mac();
    const bool isRunning = session.app() != nullptr;
    const bool isRegular = mac.application.activationPolicy() == ports::regularActivationPolicy;
    addItem(state, mac.statusBar.item());
    state["window"] = {{"main", windowOf(mac.displays, ShellWindow::main)},
                       {"alerts", windowOf(mac.displays, ShellWindow::alerts)}};
    state["dialogs"] = dialogsOf(mac);
    state["activationPolicy"] = !isRunning ? Json(nullptr) : Json(isRegular ? "regular" : "accessory");
    state["quit"] = isRunning ? nameOf(session.app()->delegate().quitState()) : "quit";
}

} // namespace sentrel::simulation
