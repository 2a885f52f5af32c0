#include "coordinator/AlarmCoordinator.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/MacPresenceService.hpp"
#include "core/Events.hpp"
#include "core/LocalizedText.hpp"
#include "foundation/Quietly.hpp"
#include "lock/ScreenCoverService.hpp"
#include "outputs/AlarmSoundPlayer.hpp"
#include "outputs/CameraCapture.hpp"
#include "outputs/MediaPlayback.hpp"
#include "ports/Journal.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/WeakCall.hpp"

#include <chrono>
#include <utility>

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// Limit of the lock screen's wait for the media preparation, which may be asking the user for consent.
constexpr Duration longestPreparation = 10s;

} // namespace

AlarmCoordinator::AlarmCoordinator(MainActor actor, bool isCompatibleComputer, Collaborators collaborators, Ports ports)
    : actor_(actor),
      isCompatibleComputer_(isCompatibleComputer),
      with_(collaborators),
      ports_(ports),
      powerMonitor_(actor, ports.powerSources),
      lidMonitor_(actor, ports.deviceRegistry, ports.workspaceNotifications),
      motionMonitor_(actor, ports.hidEvents, ports.wallClock),
      armedPowerAssertion_(ports.powerAssertions),
      pipeline_(actor,
                {with_.settings, lidMonitor_, with_.camera, with_.alertStore, with_.alertList, with_.cloud,
                 with_.uploader, *this},
                {ports.powerAssertions, ports.wallClock, ports.random, ports.host, ports.journal})
{
    statusMessage = localized("Disarmed");
    with_.soundPlayer.onPlaybackDegraded = [weak = anchor_.weak()](const std::string& message) {
        if (AlarmCoordinator* const self = weak.get()) {
            self->lastError = message;
        }
    };
}

void AlarmCoordinator::syncWithSettings(const AlarmSettings& settings)
{
    assertOnMainActor(actor_);
    if (isCompatibleComputer_ && settings.isArmed) {
        if (isArmed) {
            applyTriggerSettings(settings);
            updateScreenGuard(settings);
        } else {
            arm(settings);
        }
    } else {
        disarm();
    }
    if (isCompatibleComputer_) {
        tasks_.add(actor_.spawn(with_.presence.publishState()));
    }
}

void AlarmCoordinator::arm(const AlarmSettings& settings)
{
    assertOnMainActor(actor_);
    if (!isCompatibleComputer_ || isArmed) {
        return;
    }
    isArmed = true;
    isAlarmActive = false;
    lastError = std::nullopt;
    statusMessage = localized("Armed");
    quietly([this] { armedPowerAssertion_.acquire("Sentrel is armed and monitoring"); });
    std::optional<Task<void>> preparation;
    if (settings.alarmSound) {
        preparation =
            detached(actor_.scheduler(), QualityOfService::utility, with_.mediaPlayback.requestAutomationConsent());
        tasks_.add(*preparation);
    }
    applyTriggerSettings(settings);
    cancelScreenGuard();
    if (settings.lockScreenOnArm) {
        startScreenGuard(std::move(preparation), settings.lockScreenSleepDelay);
    }
}

void AlarmCoordinator::disarm()
{
    assertOnMainActor(actor_);
    isArmed = false;
    isAlarmActive = false;
    lastTrigger = std::nullopt;
    statusMessage = localized("Disarmed");
    cameraWarning = std::nullopt;
    motionWarning = std::nullopt;
    cancelScreenGuard();
    quietly([this] { armedPowerAssertion_.release(); });
    stopMonitors();
    powerMonitor_.onUnplugged = nullptr;
    lidMonitor_.onLidClosed = nullptr;
    motionMonitor_.onMotionDetected = nullptr;
    with_.soundPlayer.stop();
}

void AlarmCoordinator::trigger(TriggerReason reason)
{
    assertOnMainActor(actor_);
    if (!isArmed) {
        return;
    }
    const AlarmSettings& settings = with_.settings.settings();
    if (settings.alarmSound) {
        // The sound comes first, because a system call might block the main thread.
        with_.soundPlayer.play(static_cast<float>(settings.alarmVolume));
    }
    ports_.journal.note(events::Trigger{rawValue(reason)});
    lastTrigger = reason;
    isAlarmActive = isAlarmActive || settings.alarmSound;
    pipeline_.add(reason);
}

void AlarmCoordinator::stopAlarm()
{
    assertOnMainActor(actor_);
    isAlarmActive = false;
    with_.soundPlayer.stop();
    statusMessage = localized(isArmed ? "Armed" : "Disarmed");
}

void AlarmCoordinator::applyTriggerSettings(const AlarmSettings& settings)
{
    assertOnMainActor(actor_);
    stopMonitors();
    powerMonitor_.onUnplugged = triggerCallback(settings.triggerOnUnplugged, TriggerReason::unplugged);
    lidMonitor_.onLidClosed = triggerCallback(settings.triggerOnLidClosed, TriggerReason::lidClosed);
    motionMonitor_.onMotionDetected = triggerCallback(settings.triggerOnMotion, TriggerReason::motion);
    // A sensor that throws must not keep the others from watching.
    if (settings.triggerOnUnplugged) {
        quietly([this] { powerMonitor_.start(); });
    }
    if (settings.triggerOnLidClosed) {
        quietly([this] { lidMonitor_.start(); });
    }
    if (settings.triggerOnMotion) {
        quietly([&] { motionMonitor_.start(settings.motionSensitivity); });
    }
    refreshMotionWarning(settings);
    if (settings.capturePhoto) {
        tasks_.add(actor_.spawn(refreshCameraWarning()));
    } else {
        cameraWarning = std::nullopt;
    }
}

void AlarmCoordinator::updateScreenGuard(const AlarmSettings& settings)
{
    assertOnMainActor(actor_);
    if (!settings.lockScreenOnArm) {
        cancelScreenGuard();
    } else if (!screenGuardTask_) {
        startScreenGuard(std::nullopt, settings.lockScreenSleepDelay);
    }
}

void AlarmCoordinator::refreshAccelerometer()
{
    assertOnMainActor(actor_);
    // The warning stays if an accelerometer has appeared since: nothing listens to it until the watch restarts.
    if (!motionMonitor_.refreshAvailability() && isArmed) {
        refreshMotionWarning(with_.settings.settings());
    }
}

void AlarmCoordinator::showLocalSaveNotice()
{
    assertOnMainActor(actor_);
    showingLocalSaveNotice = true;
    lastError = localized("Alert saved on this Mac. It will upload when iCloud is available.");
}

void AlarmCoordinator::clearLocalSaveNoticeIfResolved()
{
    assertOnMainActor(actor_);
    if (showingLocalSaveNotice && with_.alertStore.alertsWaitingForUpload().empty()) {
        clearNotices();
    }
}

void AlarmCoordinator::clearNotices()
{
    showingLocalSaveNotice = false;
    lastError = std::nullopt;
}

std::string AlarmCoordinator::localized(std::string_view text)
{
    return localizedInAnyCase(ports_.language, text);
}

std::function<void()> AlarmCoordinator::triggerCallback(bool isWanted, TriggerReason reason)
{
    if (!isWanted) {
        return nullptr;
    }
    return weakCall(actor_, anchor_.weak(), &AlarmCoordinator::trigger, reason);
}

void AlarmCoordinator::stopMonitors()
{
    // A sensor that raises must not keep the others on watch, or the alarm sounding.
    quietly([this] { powerMonitor_.stop(); });
    quietly([this] { lidMonitor_.stop(); });
    quietly([this] { motionMonitor_.stop(); });
}

void AlarmCoordinator::refreshMotionWarning(const AlarmSettings& settings)
{
    if (settings.triggerOnMotion && !motionMonitor_.isAccelerometerAvailable()) {
        motionWarning = localized("Motion detection is unavailable on this Mac.");
    } else {
        motionWarning = std::nullopt;
    }
}

Async<void> AlarmCoordinator::refreshCameraWarning()
{
    const bool isGranted = co_await with_.camera.requestAccess();
    if (!isArmed || !with_.settings.settings().capturePhoto) {
        co_return;
    }
    if (isGranted) {
        cameraWarning = std::nullopt;
    } else {
        cameraWarning = localized("Camera access is denied. Alert photos can't be captured.");
    }
}

void AlarmCoordinator::startScreenGuard(std::optional<Task<void>> preparation, double delay)
{
    screenGuardTask_ = actor_.spawn(guardScreen(std::move(preparation), delay));
    tasks_.add(*screenGuardTask_);
}

void AlarmCoordinator::cancelScreenGuard()
{
    if (screenGuardTask_) {
        screenGuardTask_->cancel();
        screenGuardTask_.reset();
    }
}

Async<void> AlarmCoordinator::guardScreen(std::optional<Task<void>> preparation, double delay)
{
    try {
        if (preparation) {
            co_await AsyncTimeout::wait(actor_, longestPreparation, *preparation);
        }
    } catch (...) {
        // Late, failed or cancelled: the music must not keep the screen unlocked. Cancellation is checked below.
    }
    try {
        if (delay > 0.0) {
            co_await sleepFor(durationFromSeconds(delay));
        }
    } catch (const CancellationError&) {
        co_return;
    }
    const bool isCancelled = co_await isTaskCancelled();
    if (isCancelled || !isArmed || !with_.settings.settings().lockScreenOnArm) {
        co_return;
    }
    if (!with_.cover.show()) {
        lastError = localized("Lock screen skipped: no unlock passcode is set.");
    }
}

} // namespace sentrel
