#pragma once

#include "app/MacAlertsContentView.hpp"
#include "app/MacContentView.hpp"
#include "app/MenuBarLabel.hpp"
#include "app/MenuBarScene.hpp"
#include "app/MenuBarView.hpp"
#include "app/ProtectedActions.hpp"
#include "app/ShellWindows.hpp"
#include "app/WindowHooks.hpp"
#include "app/WindowScene.hpp"
#include "ports/Platform.hpp"

#include <optional>

namespace sentrel {

class AlarmCoordinator;
class AlertPhotoPreview;
class CloudKitService;
class MacAlertsService;
class MacPresenceService;
class PasswordGate;
class SettingsStore;
class UnlockPasscodeStore;

/// The visible application: the item in the menu bar, the control panel "main" and the window of alerts "alerts". A
/// part of the composition root. Main actor.
class SentrelScenes {
public:
    struct Services {
        SettingsStore& settings;
        AlarmCoordinator& coordinator;
        CloudKitService& cloud;
        MacAlertsService& alerts;
        MacPresenceService& presence;
        UnlockPasscodeStore& passcodes;
        PasswordGate& passwordGate;
        AlertPhotoPreview& photoPreview;
        WindowHooks& windowHooks;
    };

    SentrelScenes(MainActor actor, bool isComputerCompatible, Services services, ports::Platform& platform);
    SentrelScenes(const SentrelScenes&) = delete;

    /// Shows the item in the menu bar. From now on the alarm follows the stored settings, and the windows can be
    /// opened.
    void appear();

private:
    void openMainWindow();
    void openAlertsWindow();
    [[nodiscard]] MenuBarView::Actions menuActions();

    Services with_;
    ports::Platform& platform_;
    const bool isComputerCompatible_;
    ProtectedActions protectedActions_;
    ShellWindows windows_;
    MainWindowDelegate mainWindowDelegate_{windows_};
    AlertsWindowDelegate alertsWindowDelegate_{windows_};
    MacContentView mainView_;
    MacAlertsContentView alertsView_;
    MenuBarLabel menuLabel_;
    std::optional<MenuBarView> menuView_; ///< none before `appear`
    WindowScene mainScene_;
    WindowScene alertsScene_;
    MenuBarScene menuScene_;
};

} // namespace sentrel
