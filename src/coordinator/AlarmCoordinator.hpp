#pragma once

#include "coordinator/AlertPipeline.hpp"
#include "core/SettingsStore.hpp"
#include "core/TriggerReason.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Observable.hpp"
#include "runtime/Weak.hpp"
#include "sensors/LidMonitor.hpp"
#include "sensors/MotionMonitor.hpp"
#include "sensors/PowerAssertion.hpp"
#include "sensors/PowerMonitor.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel {

class AlarmSoundPlayer;
class AlertUploader;
class CameraCapture;
class CloudKitService;
class LocalAlertStore;
class MacAlertsService;
class MacPresenceService;
class MediaPlayback;
class ScreenCoverService;

namespace ports {
class GeneralRandom;
class HostInfo;
class Journal;
class Language;
class WallClock;
} // namespace ports

/// Arms and disarms the Mac by the user's settings, receives the triggers, sounds and silences the alarm and hands each
/// trigger to the pipeline of alerts. Main actor only; everything referred to outlives it.
class AlarmCoordinator final : private UploadNotices {
public:
    /// The services and ports that the coordinator uses. It owns the sensors itself.
    struct Collaborators {
        SettingsStore& settings;
        LocalAlertStore& alertStore;
        AlarmSoundPlayer& soundPlayer;
        MediaPlayback& mediaPlayback;
        CameraCapture& camera;
        ScreenCoverService& cover;
        CloudKitService& cloud;
        AlertUploader& uploader;
        MacAlertsService& alertList;
        MacPresenceService& presence;
    };
    struct Ports {
        ports::PowerSources& powerSources;
        ports::DeviceRegistry& deviceRegistry;
        ports::WorkspaceNotifications& workspaceNotifications;
        ports::HidEventSystem& hidEvents;
        ports::PowerAssertions& powerAssertions;
        ports::WallClock& wallClock;
        ports::GeneralRandom& random;
        ports::HostInfo& host;
        ports::Language& language;
        ports::Journal& journal;
    };

    /// Sets the sound player's `onPlaybackDegraded`. On an incompatible computer the coordinator never arms.
    AlarmCoordinator(MainActor actor, bool isCompatibleComputer, Collaborators collaborators, Ports ports);
    AlarmCoordinator(const AlarmCoordinator&) = delete;

    Observable<bool> isArmed;                             ///< the monitors are running
    Observable<bool> isAlarmActive;                       ///< the alarm is sounding
    Observable<std::optional<TriggerReason>> lastTrigger; ///< cause of the latest trigger while armed
    Observable<std::optional<std::string>> lastError;     ///< one-line notice
    Observable<std::string> statusMessage;
    Observable<std::optional<std::string>> cameraWarning; ///< while armed, when photos can't be taken
    Observable<std::optional<std::string>> motionWarning; ///< while armed, when motion can't be watched
    Observable<bool> showingLocalSaveNotice;              ///< `lastError` holds the local-save notice

    /// Call after every change of the stored settings. Arms, applies the settings while armed, or disarms, and
    /// publishes the new state.
    void syncWithSettings(const AlarmSettings& settings);

    void arm(const AlarmSettings& settings);

    /// Safe in any state. Triggers accepted before are still processed.
    void disarm();

    /// Restarts the monitors and updates the warnings.
    void applyTriggerSettings(const AlarmSettings& settings);

    /// Starts or cancels the delayed lock screen after a change of settings while armed.
    void updateScreenGuard(const AlarmSettings& settings);

    /// Probes for an accelerometer again. Warns if the Mac is armed, watches motion and has none.
    void refreshAccelerometer();

    /// The result of the last probe, or of the last start of the motion watch.
    [[nodiscard]] bool hasAccelerometer() const { return motionMonitor_.isAccelerometerAvailable(); }

    /// Handles a trigger; ignored while disarmed.
    void trigger(TriggerReason reason);

    /// Silences the alarm; stays armed.
    void stopAlarm();

    void showLocalSaveNotice() override;
    void clearLocalSaveNoticeIfResolved() override;

    /// The number of triggers that are being processed or queued.
    [[nodiscard]] std::int64_t processingCount() const { return pipeline_.processingCount(); }

private:
    [[nodiscard]] std::string localized(std::string_view text);
    [[nodiscard]] std::function<void()> triggerCallback(bool isWanted, TriggerReason reason);
    void stopMonitors();
    void clearNotices() override;
    void refreshMotionWarning(const AlarmSettings& settings);
    Async<void> refreshCameraWarning();
    void startScreenGuard(std::optional<Task<void>> preparation, double delay);
    void cancelScreenGuard();
    Async<void> guardScreen(std::optional<Task<void>> preparation, double delay);

    MainActor actor_;
    const bool isCompatibleComputer_;
    Collaborators with_;
    Ports ports_;
    PowerMonitor powerMonitor_;
    LidMonitor lidMonitor_;
    MotionMonitor motionMonitor_;
    std::optional<Task<void>> screenGuardTask_;
    PowerAssertion armedPowerAssertion_;
    AlertPipeline pipeline_;
    TaskBag tasks_;
    WeakAnchor<AlarmCoordinator> anchor_{*this};
};

} // namespace sentrel
