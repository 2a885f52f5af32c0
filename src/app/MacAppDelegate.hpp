#pragma once

#include "foundation/Json.hpp"
#include "ports/Application.hpp"
#include "ports/Registration.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

namespace sentrel {

class AlarmCoordinator;
class AlarmSoundPlayer;
class AlertPhotoPreview;
class CloudKitConnectionMonitor;
class MacAlertsService;
class MacPresenceService;
class PasswordGate;
class ScreenCoverService;
class SettingsStore;
class WindowHooks;

namespace ports {
class Journal;
class Language;
class PreviewPanel;
class RemoteNotifications;
class WorkspaceNotifications;
} // namespace ports

/// Starts the services in order, decides whether the application may quit, and restores the Mac's state. Main actor;
/// everything that it is given outlives it.
class MacAppDelegate {
public:
    struct Services {
        SettingsStore& settings;
        AlarmSoundPlayer& soundPlayer;
        AlarmCoordinator& coordinator;
        MacAlertsService& alerts;
        MacPresenceService& presence;
        CloudKitConnectionMonitor& connectionMonitor;
        PasswordGate& passwordGate;
        const ScreenCoverService& cover;
        AlertPhotoPreview& photoPreview;
        WindowHooks& windows;
    };
    struct Ports {
        ports::Application& application;
        ports::RemoteNotifications& remoteNotifications;
        ports::WorkspaceNotifications& workspaceNotifications;
        ports::PreviewPanel& previewPanel;
        ports::Language& language;
        ports::Journal& journal;
    };

    /// The progress of a quit.
    enum class QuitState { running, authorizing, cleaningUp, terminating };

    MacAppDelegate(MainActor actor, bool isCompatibleComputer, Services services, Ports ports);
    MacAppDelegate(const MacAppDelegate&) = delete;

    void applicationDidFinishLaunching();

    /// Quitting needs the login when the settings say so, and always while the alarm is sounding or the lock screen is
    /// shown. A quit that comes to need it during the cleanup is refused and must be asked for again.
    [[nodiscard]] ports::TerminateReply applicationShouldTerminate();

    /// Returns once the user's sound is restored.
    void applicationWillTerminate();

    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    [[nodiscard]] QuitState quitState() const;

private:
    [[nodiscard]] bool mayQuit() const;
    void callQuitOff();
    void leaveDisarmed();
    void registerForRemoteNotifications();
    void applicationDidReceiveRemoteNotification(const Json& userInfo);
    void controlPreviewPanel();
    void systemDidWake();
    Async<void> bringUpControlPanel();
    Async<void> authorizeQuit();
    Async<void> cleanUpAndQuit();
    void start(Task<void>& task, Async<void> work);

    MainActor actor_;
    const bool isCompatibleComputer_;
    Services with_;
    Ports ports_;
    bool quitAuthorized_ = false;
    bool quitCleanupDone_ = false;
    Task<void> authorization_; ///< none before the first
    Task<void> cleanup_;       ///< likewise
    ports::RegistrationPtr wakeRegistration_;
    TaskBag tasks_;
    WeakAnchor<MacAppDelegate> anchor_{*this};
};

} // namespace sentrel
