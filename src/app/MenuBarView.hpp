#pragma once

#include "app/LoginItemToggle.hpp"
#include "app/StopAlarmButton.hpp"
#include "runtime/Observable.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <functional>
#include <string>
#include <vector>

namespace sentrel {

class AlarmCoordinator;
class ProtectedActions;
class SettingsStore;
class WindowHooks;

/// The menu of the menu bar's item. It also has the coordinator follow the settings, whoever changes them. Main actor.
class MenuBarView {
public:
    struct Collaborators {
        SettingsStore& settings;
        AlarmCoordinator& coordinator;
        ProtectedActions& protectedActions;
        WindowHooks& windowHooks;
        ports::LoginItem& loginItem;
        ports::Language& language;
    };

    /// What the menu's scene can do.
    struct Actions {
        std::function<void()> dismiss;          ///< closes the menu
        std::function<void()> openMainWindow;   ///< the control panel
        std::function<void()> openAlertsWindow; ///< the list of alerts
        std::function<void()> quit;             ///< asks the application to terminate
    };

    MenuBarView(Collaborators collaborators, bool isComputerCompatible, Actions actions);
    MenuBarView(const MenuBarView&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

    /// The scene is there: the coordinator hears the settings as they are, and the windows can be opened from anywhere.
    void appeared();

    /// The user has opened the menu.
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
    void changed();

    Collaborators with_;
    const bool isComputerCompatible_;
    Actions actions_;
    LoginItemToggle openAtLogin_;
    StopAlarmButton stopButton_;
    std::vector<Observation> observations_;
    WeakAnchor<MenuBarView> anchor_{*this};
};

} // namespace sentrel
