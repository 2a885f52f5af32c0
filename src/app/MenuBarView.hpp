#pragma once

#include "app/ChangeReporter.hpp"
#include "app/LoginItemToggle.hpp"
#include "app/StopAlarmButton.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <functional>
#include <string>

namespace sentrel {

class AlarmCoordinator;
class ProtectedActions;
class SettingsStore;
class WindowHooks;

/// The menu of the menu bar's item. Also makes the coordinator follow every change of the settings. Main actor.
class MenuBarView final : public ChangeReporter {
public:
    struct Collaborators {
        SettingsStore& settings;
        AlarmCoordinator& coordinator;
        ProtectedActions& protectedActions;
        WindowHooks& windowHooks;
        ports::LoginItem& loginItem;
        ports::Language& language;
    };

    /// Actions that the menu's scene provides.
    struct Actions {
        std::function<void()> dismiss;          ///< closes the menu
        std::function<void()> openMainWindow;   ///< the control panel
        std::function<void()> openAlertsWindow; ///< the list of alerts
        std::function<void()> quit;             ///< asks the application to terminate
    };

    MenuBarView(Collaborators collaborators, bool isComputerCompatible, Actions actions);

    /// Call when the scene exists: applies the current settings to the coordinator and installs the window hooks.
    void appeared();

    /// Call when the user has opened the menu.
    void opened();

    [[nodiscard]] ui::View body();

private:
    [[nodiscard]] ui::View header();
    [[nodiscard]] ui::View toggles();
    [[nodiscard]] ui::View footer();
    void setArmed(bool isOn);
    void showAlerts();
    void showSettings();
    void open(const std::string& name, const std::function<void()>& openWindow);
    void quit();

    Collaborators with_;
    const bool isComputerCompatible_;
    Actions actions_;
    LoginItemToggle openAtLogin_;
    StopAlarmButton stopButton_;
    WeakAnchor<MenuBarView> anchor_{*this};
};

} // namespace sentrel
