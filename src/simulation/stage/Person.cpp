#include "simulation/stage/Person.hpp"

#include "app/ShellWindowDelegate.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/NearestWord.hpp"

#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Identities of the menu's buttons.
constexpr std::string_view settingsButton = "settings";
constexpr std::string_view alertsButton = "alertList";

std::string complaint(ui::Interaction outcome, std::string_view wanted)
{
    switch (outcome) {
    case ui::Interaction::done:
        return {};
    case ui::Interaction::notFound:
        return "there is no " + inQuotes(wanted) + " to be seen";
    case ui::Interaction::unreachable:
        return inQuotes(wanted) + " can't be used now";
    case ui::Interaction::unsuitable:
        break;
    }
    return inQuotes(wanted) + " can't be used like that";
}

} // namespace

std::string_view identifierOf(ShellWindow window)
{
    return window == ShellWindow::main ? mainWindow.identifier : alertsWindow.identifier;
}

std::string Person::perform(const UseMenu& action) const
{
    if (!action.wanted.empty()) {
        return pressInMenu(action.wanted);
    }
    return onMain([&]() -> std::string {
        SimulatedStatusBar& bar = session_.mac().statusBar;
        if (!action.isOpen) {
            bar.closeMenu();
            return {};
        }
        if (isLockedOut()) {
            return "the lock screen covers the menu bar";
        }
        return bar.openMenu() ? std::string{} : "there is no item in the menu bar";
    });
}

std::string Person::perform(const ClickOn& action) const
{
    return onMain([&]() -> std::string {
        session_.mac().statusBar.closeMenu();
        if (const auto alert = session_.mac().alerts.open()) {
            // Alerts have one button; its text depends on the language.
            session_.mac().alerts.close();
            return {};
        }
        const auto click = [&](WindowContent content) { return content.click(action.wanted); };
        return complaint(session_.mac().displays.useFront(click), action.wanted);
    });
}

std::string Person::perform(const TypeText& action) const
{
    if (action.field) {
        return onMain([&] {
            const auto fill = [&](WindowContent content) { return content.fill(*action.field, action.text); };
            return complaint(session_.mac().displays.useFront(fill), *action.field);
        });
    }
    // One character at a time: each one may change the windows.
    std::string_view rest = action.text;
    std::string why;
    while (!rest.empty() && why.empty()) {
        const std::size_t length = firstCharacter(rest);
        why = onMain([&]() -> std::string {
            return session_.mac().displays.type(rest.substr(0, length)) ? std::string{} : "nothing takes what is typed";
        });
        rest.remove_prefix(length);
    }
    return why;
}

std::string Person::perform(const PressKey& action) const
{
    return onMain([&]() -> std::string {
        auto& mac = session_.mac();
        const auto outcome =
            mac.statusBar.isMenuOpen() ? mac.statusBar.pressKey(action.key) : mac.displays.pressKey(action.key);
        return outcome == ui::Interaction::done ? std::string{} : "nothing takes that key";
    });
}

std::string Person::perform(const MoveSlider& action) const
{
    return onMain([&] {
        const auto slide = [&](WindowContent content) { return content.slide(action.slider, action.value); };
        return complaint(session_.mac().displays.useFront(slide), action.slider);
    });
}

std::string Person::perform(const SelectRows& action) const
{
    return onMain([&] {
        const auto select = [&](WindowContent content) { return content.select(action.rows); };
        return complaint(session_.mac().displays.useFront(select), "such a row");
    });
}

std::string Person::perform(const OpenWindow& action) const
{
    return pressInMenu(std::string{action.window == ShellWindow::main ? settingsButton : alertsButton});
}

std::string Person::perform(const CloseWindow& action) const
{
    return onMain([&]() -> std::string {
        const std::string_view identifier = identifierOf(action.window);
        return session_.mac().displays.closeWindow(identifier) ? std::string{} : "the window can't be closed";
    });
}

std::string Person::perform(const DragWindow& action) const
{
    return onMain([&]() -> std::string {
        SimulatedDisplays& displays = session_.mac().displays;
        const std::string_view identifier = identifierOf(action.window);
        const auto window = displays.window(identifier);
        if (!window || !window->isVisible || isLockedOut()) {
            return "the window isn't there to be dragged";
        }
        // An unchanged window may have reached its limits, so failure to resize isn't reported.
        if (action.size) {
            displays.resizeWindow(identifier, *action.size);
        }
        if (action.to) {
            displays.moveWindow(identifier, action.to->width, action.to->height);
        }
        return {};
    });
}

std::string Person::perform(const AnswerLoginItem& action) const
{
    auto& faults = session_.mac().loginItem.faults();
    const int times = action.fails ? -1 : 0;
    faults.set("register", times);
    faults.set("unregister", times);
    return {};
}

std::string Person::perform(const AnswerSavePanel& action) const
{
    SimulatedSavePanels::Answer answer;
    answer.isCancelled = !action.folder;
    answer.folder = action.folder;
    session_.mac().savePanels.setAnswer(std::move(answer));
    return {};
}

bool Person::isLockedOut() const
{
    return !session_.mac().displays.covers().empty();
}

std::string Person::pressInMenu(const std::string& wanted) const
{
    std::string why = perform(UseMenu{});
    if (!why.empty()) {
        return why;
    }
    // Clicks a turn later: opening the menu may change its content.
    return onMain([&] { return complaint(session_.mac().statusBar.click(wanted), wanted); });
}

std::string Person::onMain(const std::function<std::string()>& act) const
{
    std::string why = "Sentrel doesn't run";
    session_.onMain([&](SentrelApp&) { why = act(); });
    return why;
}

} // namespace sentrel::simulation
