#include "outputs/AlarmSoundWorker.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr const char* queueLabel = "sentrel.alarm-sound";
constexpr const char* savedStateKey = "alarmSavedOutputState";
constexpr std::string_view noDeviceMessage = "No audio output device was found. The alarm is using the system beep.";
constexpr std::string_view noToneMessage = "The alarm tone couldn't start. The alarm is using the system beep.";

/// One period of the tone: how often the volume is forced up again and the beep repeated.
constexpr Duration tickInterval = 900ms;
constexpr float beepsAtFullVolume = 3.0F;

constexpr float lowestSetting = 0.1F;
constexpr float lowestVolume = 0.25F;

} // namespace

AlarmSoundWorker::AlarmSoundWorker(Scheduler& scheduler, const AlarmSoundServices& services,
                                   DegradedCallback onDegraded)
    : services_(services),
      onDegraded_(std::move(onDegraded)),
      toneEngine_(services.audioEngines),
      queue_(scheduler, queueLabel, QualityOfService::userInteractive)
{
}

AlarmSoundWorker::~AlarmSoundWorker()
{
    // The timer belongs to the queue: it goes while the queue stands, but when none of its jobs runs any more.
    queue_.close();
    volumeTimer_.reset();
}

float AlarmSoundWorker::effectiveVolume(float setting)
{
    // Turned round so that a NaN gives the lowest volume.
    if (!(setting > lowestSetting)) {
        return lowestVolume;
    }
    return (std::min(setting, 1.0F) - lowestSetting) / 0.9F * 0.75F + lowestVolume;
}

void AlarmSoundWorker::play(float volume)
{
    queue_.async(playNow(volume));
}

void AlarmSoundWorker::stop()
{
    queue_.async([this] { stopNow(); });
}

void AlarmSoundWorker::stopAndWait()
{
    queue_.sync([this] { stopNow(); });
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
    // Once more, without waiting: it catches a player that was slow to answer or has resumed.
    for (const MediaPlayer& player : services_.mediaPlayback.listRunningPlayers()) {
        services_.mediaPlayback.pause(player);
    }
    takeOverDevice();
    usingBeepFallback_ = !toneEngine_.start(*alarmOutputDeviceID_, alarmVolume_);
    if (usingBeepFallback_) {
        onDegraded_(noToneMessage);
    }
    startVolumeTimer();
    noteStarted();
}

void AlarmSoundWorker::playOnNoDevice()
{
    usingBeepFallback_ = true;
    startVolumeTimer();
    noteStarted();
    onDegraded_(noDeviceMessage);
}

std::optional<platform::AudioObjectId> AlarmSoundWorker::chooseDevice() const
{
    const auto speaker = services_.outputVolume.findBuiltInSpeaker();
    return speaker ? speaker : services_.outputVolume.defaultOutputDevice();
}

void AlarmSoundWorker::takeOverDevice()
{
    savedOutputState_ = services_.outputVolume.takeOver(*alarmOutputDeviceID_, alarmVolume_);
    // At once, so that a crash from here on finds what to put back.
    if (const auto json = encode(*savedOutputState_)) {
        services_.defaults.setData(savedStateKey, *json);
    }
}

void AlarmSoundWorker::startVolumeTimer()
{
    // The timer dies with the worker, after the queue has been closed: its tick never finds the worker gone.
    volumeTimer_ =
        std::make_unique<RepeatingTimer>(queue_.scheduler(), queue_.executor(), tickInterval, [this] { tick(); });
}

void AlarmSoundWorker::noteStarted()
{
    platform::Journal::Value device;
    if (alarmOutputDeviceID_) {
        device = static_cast<std::int64_t>(*alarmOutputDeviceID_);
    }
    const std::string_view mode = usingBeepFallback_ ? "beep" : "tone";
    services_.journal.note("alarm.started",
                           {{"mode", mode}, {"device", device}, {"volume", static_cast<double>(alarmVolume_)}});
}

void AlarmSoundWorker::tick()
{
    if (!isPlaying_) {
        return;
    }
    if (alarmOutputDeviceID_) {
        services_.outputVolume.enforce(*alarmOutputDeviceID_, alarmVolume_);
        services_.journal.note("volume.enforced", {{"device", static_cast<std::int64_t>(*alarmOutputDeviceID_)}});
    }
    if (usingBeepFallback_) {
        beepBurst();
    }
}

void AlarmSoundWorker::beepBurst()
{
    // The system beeps on the default device only, so that the alarm's device has to be it for a moment.
    const auto usual = services_.outputVolume.defaultOutputDevice();
    const bool mustSwitch = alarmOutputDeviceID_ && usual && *usual != *alarmOutputDeviceID_;
    if (mustSwitch) {
        services_.outputVolume.setDefaultOutputDevice(*alarmOutputDeviceID_);
    }
    const int count = static_cast<int>(std::max(alarmVolume_ * beepsAtFullVolume, 1.0F));
    for (int i = 0; i < count; ++i) {
        services_.systemBeep.beep();
    }
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
    isPlaying_ = false;
    volumeTimer_.reset();
    toneEngine_.stop();
    alarmOutputDeviceID_.reset();
    if (const auto state = std::exchange(savedOutputState_, std::nullopt)) {
        services_.outputVolume.restore(*state);
    }
    services_.defaults.remove(savedStateKey);
    services_.journal.note("alarm.stopped", {});
}

void AlarmSoundWorker::restoreNow()
{
    if (isPlaying_ || savedOutputState_) {
        return;
    }
    const auto data = services_.defaults.data(savedStateKey);
    if (!data) {
        return;
    }
    const auto state = decodeSavedOutputState(*data);
    if (!state) {
        return;
    }
    // First the key: a state that somehow ends the program must not do so at every launch.
    services_.defaults.remove(savedStateKey);
    services_.outputVolume.restore(*state);
}

} // namespace sentrel
