#pragma once

#include "alerts/AlertUploader.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "alerts/MacAlertsService.hpp"
#include "app/AlertPhotoPreview.hpp"
#include "app/CloudCatchUp.hpp"
#include "app/MacAppDelegate.hpp"
#include "app/SentrelScenes.hpp"
#include "app/WindowHooks.hpp"
#include "cloud/CloudKitConnectionMonitor.hpp"
#include "cloud/CloudKitService.hpp"
#include "cloud/MacPresenceService.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "coordinator/AlarmJournal.hpp"
#include "coordinator/CoverAlarm.hpp"
#include "core/SettingsStore.hpp"
#include "lock/PasswordGate.hpp"
#include "lock/ScreenCoverService.hpp"
#include "lock/UnlockPasscodeStore.hpp"
#include "outputs/AlarmSoundPlayer.hpp"
#include "outputs/CameraCapture.hpp"
#include "outputs/MediaPlayback.hpp"
#include "outputs/SystemVolumeControl.hpp"
#include "ports/Platform.hpp"
#include "runtime/MainActor.hpp"

namespace sentrel {

/// The composition root: creates every service once, hands each its collaborators, wires the callbacks and declares the
/// scenes. The same on every platform, which reports launch, quit and end to it. Main thread; the platform outlives it.
class SentrelApp {
public:
    explicit SentrelApp(ports::Platform& platform);
    SentrelApp(const SentrelApp&) = delete;
    ~SentrelApp();

    [[nodiscard]] SettingsStore& settings() { return settings_; }
    [[nodiscard]] AlarmCoordinator& coordinator() { return coordinator_; }
    [[nodiscard]] LocalAlertStore& alertStore() { return alertStore_; }
    [[nodiscard]] UnlockPasscodeStore& passcodes() { return passcodes_; }
    [[nodiscard]] const ScreenCoverService& cover() const { return cover_; }
    [[nodiscard]] PasswordGate& passwordGate() { return passwordGate_; }
    [[nodiscard]] CloudKitService& cloud() { return cloud_; }
    [[nodiscard]] MacAlertsService& alertsService() { return alertsService_; }
    [[nodiscard]] MacPresenceService& presence() { return presence_; }
    [[nodiscard]] const MacAppDelegate& delegate() const { return delegate_; }
    [[nodiscard]] bool isComputerCompatible() const { return isComputerCompatible_; }

private:
    void launch();
    void terminate();
    [[nodiscard]] MacPresenceService::Alarm alarmForPresence();

    MainActor actor_;
    const bool isComputerCompatible_;
    SettingsStore settings_;
    LocalAlertStore alertStore_;
    MediaPlayback mediaPlayback_;
    SystemVolumeControl outputVolume_;
    AlarmSoundPlayer soundPlayer_;
    CameraCapture camera_;
    UnlockPasscodeStore passcodes_;
    PasswordGate passwordGate_;
    CoverAlarm coverAlarm_{coordinator_};
    ScreenCoverService cover_;
    CloudKitService cloud_;
    AlertUploader uploader_;
    MacAlertsService alertsService_;
    MacPresenceService presence_;
    AlarmCoordinator coordinator_;
    AlarmJournal journal_;
    CloudCatchUp cloudCatchUp_{alertsService_, coordinator_};
    CloudKitConnectionMonitor connectionMonitor_;
    AlertPhotoPreview photoPreview_;
    WindowHooks windowHooks_;
    MacAppDelegate delegate_;
    SentrelScenes scenes_;
    ports::Application& application_;
};

} // namespace sentrel
