#pragma once

#include "core/AlertEvent.hpp"
#include "core/SettingsStore.hpp"
#include "core/TriggerReason.hpp"
#include "foundation/Bytes.hpp"
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
#include <set>
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

/// Arms and disarms the Mac by the user's settings, receives the triggers, sounds the alarm and takes each alert
/// through photo, local copy and upload. Main actor only; everything referred to outlives it.
class AlarmCoordinator {
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

    void showLocalSaveNotice();

    /// Clears the local-save notice if no alert waits for upload.
    void clearLocalSaveNoticeIfResolved();

    /// The number of triggers that are being processed or queued.
    [[nodiscard]] std::int64_t processingCount() const { return processingCount_; }

private:
    [[nodiscard]] std::string localized(std::string_view text);
    [[nodiscard]] std::function<void()> triggerCallback(bool isWanted, TriggerReason reason);
    static Async<void> deliver(Weak<AlarmCoordinator> weak, TriggerReason reason);
    void stopMonitors();
    void refreshMotionWarning(const AlarmSettings& settings);
    Async<void> refreshCameraWarning();
    Async<void> prepareMediaPlayback(bool alarmSound);
    void startScreenGuard(std::optional<Task<void>> preparation, double delay);
    void cancelScreenGuard();
    Async<void> guardScreen(std::optional<Task<void>> preparation, double delay);

    void enqueueProcessing(TriggerReason reason);
    Async<void> processAfter(std::optional<Task<void>> predecessor, TriggerReason reason, std::optional<Date> taken);
    Async<void> process(TriggerReason reason, std::optional<Date> taken);
    Async<std::optional<Bytes>> takePhoto(bool isWanted);
    void finishProcessing();
    [[nodiscard]] AlertEvent makeAlertInAnyCase(TriggerReason reason, std::optional<Date> taken, bool hasPhoto);
    [[nodiscard]] AlertEvent makeAlert(TriggerReason reason, std::optional<Date> taken, bool hasPhoto);
    void keep(const AlertEvent& alert, const std::optional<Bytes>& photo, bool cloudFlag);
    bool saveLocally(const AlertEvent& alert, const std::optional<Bytes>& photo, bool cloudFlag);
    Async<void> uploadInAnyCase(AlertEvent alert, std::optional<Bytes> photo, bool cloudFlag);
    Async<void> upload(AlertEvent alert, std::optional<Bytes> photo, bool cloudFlag);
    void noteKept(const UUID& id);
    Async<void> uploadNow(AlertEvent alert, std::optional<Bytes> photo);
    void clearNotices();

    MainActor actor_;
    const bool isCompatibleComputer_;
    Collaborators with_;
    Ports ports_;
    PowerMonitor powerMonitor_;
    LidMonitor lidMonitor_;
    MotionMonitor motionMonitor_;
    std::optional<Task<void>> processingChain_;
    std::int64_t processingCount_ = 0;
    std::set<TriggerReason> pendingReasons_;
    std::optional<Task<void>> screenGuardTask_;
    PowerAssertion armedPowerAssertion_;
    PowerAssertion alarmPowerAssertion_;
    TaskBag tasks_;
    WeakAnchor<AlarmCoordinator> anchor_{*this};
};

} // namespace sentrel
