#include "outputs/AlarmSoundWorker.hpp"

#include "core/Events.hpp"
#include "foundation/Quietly.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr const char* queueLabel = "sentrel.alarm-sound";
constexpr const char* savedStateKey = "alarmSavedOutputState";
constexpr std::string_view noDeviceMessage = "No audio output device was found. The alarm is using the system beep.";
constexpr std::string_view noToneMessage = "The alarm tone couldn't start. The alarm is using the system beep.";

/// One period of the tone; the interval at which the volume is enforced and the beep repeated.
constexpr Duration tickInterval = 900ms;

/// Limit of `stopAndWait` while a system call holds the queue.
constexpr Duration longestStop = 2s;

constexpr float lowestSetting = 0.1F;
constexpr float lowestVolume = 0.25F;

} // namespace

AlarmSoundWorker::AlarmSoundWorker(Scheduler& scheduler, const AlarmSoundServices& services,
                                   DegradedCallback onDegraded)
    : services_(services),
      onDegraded_(std::move(onDegraded)),
      toneEngine_(services.audioEngines),
      watch_(scheduler, services.systemBeep, [this] { onDegraded_(noToneMessage); }),
      queue_(scheduler, queueLabel, QualityOfService::userInteractive)
{
}

AlarmSoundWorker::~AlarmSoundWorker()
{
    // The timer uses the queue's executor: it is destroyed before the queue, but after the last job has ended.
    queue_.close();
    volumeTimer_.reset();
}

float AlarmSoundWorker::effectiveVolume(float setting)
{
    // Negated so that a NaN gives the lowest volume.
    if (!(setting > lowestSetting)) {
        return lowestVolume;
    }
    return (std::min(setting, 1.0F) - lowestSetting) / 0.9F * 0.75F + lowestVolume;
}

void AlarmSoundWorker::play(float volume)
{
    watch_.begin(effectiveVolume(volume));
    queue_.async(playNow(volume));
}

void AlarmSoundWorker::stop()
{
    watch_.end();
    queue_.async([this] { stopNow(); });
}

void AlarmSoundWorker::stopAndWait()
{
    watch_.end();
    queue_.syncWithin(longestStop, [this] { stopNow(); });
}

void AlarmSoundWorker::restoreLeftoverState()
{
    queue_.async([this] { restoreNow(); });
}

Async<void> AlarmSoundWorker::playNow(float volume)
{
    if (isPlaying_) {
        co_return;
    }
    isPlaying_ = true;
    alarmVolume_ = effectiveVolume(volume);
    alarmOutputDeviceID_ = chooseDevice();
    if (!alarmOutputDeviceID_) {
        playOnNoDevice();
        co_return;
    }
    co_await services_.mediaPlayback.pauseAllAndWait();
    takeOverDevice();
    // A second pause, without waiting, catches a player that was slow to answer or has resumed.
    services_.mediaPlayback.pauseAll();
    const bool hasTone = toneEngine_.start(*alarmOutputDeviceID_, alarmVolume_);
    startVolumeTimer();
    if (hasTone) {
        watch_.noteSounding();
        noteStarted();
    } else {
        fallBackToBeeps();
    }
}

void AlarmSoundWorker::playOnNoDevice()
{
    usingBeepFallback_ = true;
    startVolumeTimer();
    noteStarted();
    onDegraded_(noDeviceMessage);
}

std::optional<ports::AudioObjectId> AlarmSoundWorker::chooseDevice() const
{
    const auto speaker = services_.outputVolume.findBuiltInSpeaker();
    return speaker ? speaker : services_.outputVolume.defaultOutputDevice();
}

void AlarmSoundWorker::takeOverDevice()
{
    savedOutputState_ = services_.outputVolume.takeOver(*alarmOutputDeviceID_, alarmVolume_);
    // Saved at once, so that the launch after a crash can restore the output.
    if (const auto json = encode(*savedOutputState_)) {
        quietly([&] { services_.defaults.setData(savedStateKey, *json); });
    }
}

void AlarmSoundWorker::startVolumeTimer()
{
    // `this` is safe: the worker closes the queue before it destroys the timer.
    volumeTimer_ =
        std::make_unique<RepeatingTimer>(queue_.scheduler(), queue_.executor(), tickInterval, [this] { tick(); });
}

void AlarmSoundWorker::noteStarted()
{
    services_.journal.note(events::AlarmStarted{
        .mode = usingBeepFallback_ ? "beep" : "tone",
        .device = alarmOutputDeviceID_,
        .volume = static_cast<double>(alarmVolume_),
    });
}

void AlarmSoundWorker::tick()
{
    if (!isPlaying_) {
        return;
    }
    if (alarmOutputDeviceID_) {
        services_.outputVolume.enforce(*alarmOutputDeviceID_, alarmVolume_);
        services_.journal.note(events::VolumeEnforced{*alarmOutputDeviceID_});
    }
    if (!usingBeepFallback_) {
        keepToneRunning();
    }
    if (usingBeepFallback_) {
        beepBurst();
    }
    watch_.noteSounding();
}

/// The system stops an engine whose output changes its format or disappears. Such an engine is restarted, but given up
/// if it stops again before the next tick.
void AlarmSoundWorker::keepToneRunning()
{
    if (toneEngine_.isRunning()) {
        wasToneRestarted_ = false;
        return;
    }
    if (!wasToneRestarted_ && toneEngine_.start(*alarmOutputDeviceID_, alarmVolume_)) {
        wasToneRestarted_ = true;
        services_.journal.note(events::ToneRestarted{});
        return;
    }
    toneEngine_.stop();
    fallBackToBeeps();
}

void AlarmSoundWorker::fallBackToBeeps()
{
    usingBeepFallback_ = true;
    noteStarted();
    onDegraded_(noToneMessage);
}

void AlarmSoundWorker::beepBurst()
{
    // The system beeps only on the default device, so the alarm's device becomes the default for the burst.
    const auto usual = services_.outputVolume.defaultOutputDevice();
    const bool mustSwitch = alarmOutputDeviceID_ && usual && *usual != *alarmOutputDeviceID_;
    if (mustSwitch) {
        services_.outputVolume.setDefaultOutputDevice(*alarmOutputDeviceID_);
    }
    AlarmWatch::beepBurst(services_.systemBeep, alarmVolume_);
    if (mustSwitch) {
        services_.outputVolume.setDefaultOutputDevice(*usual);
    }
}

void AlarmSoundWorker::stopNow()
{
    if (!isPlaying_) {
        return;
    }
    usingBeepFallback_ = false;
    wasToneRestarted_ = false;
    isPlaying_ = false;
    volumeTimer_.reset();
    toneEngine_.stop();
    alarmOutputDeviceID_.reset();
    if (const auto state = std::exchange(savedOutputState_, std::nullopt)) {
        services_.outputVolume.restore(*state);
    }
    quietly([this] { services_.defaults.remove(savedStateKey); });
    services_.journal.note(events::AlarmStopped{});
}

void AlarmSoundWorker::restoreNow()
{
    if (isPlaying_ || savedOutputState_) {
        return;
    }
    const auto data = quietly([this] { return services_.defaults.data(savedStateKey); });
    if (!data) {
        return;
    }
    const auto state = decodeSavedOutputState(*data);
    if (!state) {
        return;
    }
    // The key is removed first: a state that ends the program must not do so at every launch.
    quietly([this] { services_.defaults.remove(savedStateKey); });
    services_.outputVolume.restore(*state);
}

} // namespace sentrel
