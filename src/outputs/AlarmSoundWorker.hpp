#pragma once

#include "outputs/AlarmWatch.hpp"
#include "outputs/MediaPlayback.hpp"
#include "outputs/SavedOutputState.hpp"
#include "outputs/SystemVolumeControl.hpp"
#include "outputs/ToneEngine.hpp"
#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/SerialQueue.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace sentrel {

/// The services behind the alarm sound. All of them outlive it.
struct AlarmSoundServices {
    SystemVolumeControl& outputVolume;
    MediaPlayback& mediaPlayback;
    ports::AudioEngines& audioEngines;
    ports::SystemBeep& systemBeep;
    ports::UserDefaults& defaults;
    ports::Language& language;
    ports::Journal& journal;
};

/// Sounds the alarm on its own queue: it pauses music, takes the speaker over, plays the tone or, failing that, the
/// system's beep, and keeps the volume up until it is stopped. A system call that throws is skipped; one that never
/// returns blocks the queue, and the watch beeps instead. Operations may be called on any thread.
class AlarmSoundWorker {
public:
    /// Called off the main thread with an English text, the key of its translation.
    using DegradedCallback = std::function<void(std::string_view message)>;

    AlarmSoundWorker(Scheduler& scheduler, const AlarmSoundServices& services, DegradedCallback onDegraded);

    /// Silences the tone but restores nothing, as in a crash: the next launch does that from the output state saved on
    /// disk.
    ~AlarmSoundWorker();
    AlarmSoundWorker(const AlarmSoundWorker&) = delete;

    /// Starts the alarm at a volume setting of 0 to 1, unless it sounds already.
    void play(float volume);

    /// Stops the alarm and restores the user's audio output.
    void stop();

    /// Like `stop`, but blocks until it is done, or for 2 s if a system call holds the queue: the next launch then
    /// restores the output. Not from the worker's queue.
    void stopAndWait();

    /// Restores the audio output after a crash that left it taken over.
    void restoreLeftoverState();

    /// The effective volume for a setting: 0.1 to 1.0 mapped onto 0.25 to 1.0, so that no setting makes it quiet.
    [[nodiscard]] static float effectiveVolume(float setting);

private:
    Async<void> playNow(float volume);
    void playOnNoDevice();
    [[nodiscard]] std::optional<ports::AudioObjectId> chooseDevice() const;
    void takeOverDevice();
    void startVolumeTimer();
    void noteStarted();
    void tick();
    void keepToneRunning();
    void fallBackToBeeps();
    void beepBurst();
    void stopNow();
    void restoreNow();

    AlarmSoundServices services_;
    const DegradedCallback onDegraded_;
    ToneEngine toneEngine_;
    std::unique_ptr<RepeatingTimer> volumeTimer_;
    bool usingBeepFallback_ = false;
    bool wasToneRestarted_ = false; // whether the last tick restarted the tone
    bool isPlaying_ = false;
    float alarmVolume_ = 0.8F;
    std::optional<SavedOutputState> savedOutputState_;
    std::optional<ports::AudioObjectId> alarmOutputDeviceID_;
    AlarmWatch watch_;
    SerialQueue queue_; // last: destroyed before the members that its jobs use
};

} // namespace sentrel
