#pragma once

#include "ports/AudioEngine.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/SerialQueue.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Beeps when the alarm should sound and doesn't. The worker's queue stands still while a call of the audio system does
/// not come back, and no code can interrupt such a call; so the watch has a queue of its own, where it calls nothing
/// but the beep. The first beep comes within a second of the trigger, and one a period follows until the worker gives a
/// sign again. Operations may be called on any thread.
class AlarmWatch {
public:
    /// `onBeeping` is called on the watch's queue, once for each alarm, after the first beep.
    AlarmWatch(Scheduler& scheduler, ports::SystemBeep& beep, std::function<void()> onBeeping);
    ~AlarmWatch();
    AlarmWatch(const AlarmWatch&) = delete;

    /// The alarm is wanted, at this effective volume; no effect when it is already.
    void begin(float alarmVolume);

    /// The worker makes the sound: now, and for the next two periods.
    void noteSounding();

    /// The alarm is no longer wanted.
    void end();

    /// Beeps as often as the volume wants it: 1 to 3 times. One that raises is passed over.
    static void beepBurst(ports::SystemBeep& beep, float alarmVolume);

private:
    void check();

    ports::SystemBeep& beep_;
    const std::function<void()> onBeeping_;
    std::unique_ptr<RepeatingTimer> timer_; // while the alarm is wanted
    float alarmVolume_ = 0.0F;
    Instant soundsUntil_;
    Instant lastCheck_;
    bool hasBeeped_ = false;
    SerialQueue queue_; // last: dead before what its jobs use
};

} // namespace sentrel
