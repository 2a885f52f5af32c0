#pragma once

#include "ports/AudioEngine.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/SerialQueue.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Beeps when the alarm should sound but doesn't. An audio system call that hangs blocks the worker's queue and can't
/// be interrupted, so the watch has its own queue, where its only system call is the beep. It first beeps within a
/// second of the trigger, then every 950 ms until the worker reports sound again. Operations may be called on any
/// thread.
class AlarmWatch {
public:
    /// `onBeeping` is called on the watch's queue, once for each alarm, after the first beep.
    AlarmWatch(Scheduler& scheduler, ports::SystemBeep& beep, std::function<void()> onBeeping);
    ~AlarmWatch();
    AlarmWatch(const AlarmWatch&) = delete;

    /// Starts watching, at this effective volume. No effect while already watching.
    void begin(float alarmVolume);

    /// Reports that the worker makes the sound; valid for the worker's next two periods.
    void noteSounding();

    /// Stops watching.
    void end();

    /// Beeps 1 to 3 times, depending on the volume. A beep that throws is skipped.
    static void beepBurst(ports::SystemBeep& beep, float alarmVolume);

private:
    void check();

    ports::SystemBeep& beep_;
    const std::function<void()> onBeeping_;
    std::unique_ptr<RepeatingTimer> timer_; // null while not watching
    float alarmVolume_ = 0.0F;
    Instant soundsUntil_;
    Instant lastCheck_;
    bool hasBeeped_ = false;
    SerialQueue queue_; // last: destroyed before the members that its jobs use
};

} // namespace sentrel
