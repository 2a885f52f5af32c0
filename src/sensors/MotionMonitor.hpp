#pragma once

#include "ports/HidEventSystem.hpp"
#include "ports/WallClock.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"
#include "sensors/AccelerometerEventHandler.hpp"
#include "sensors/MotionDetector.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Tells when the computer is moved, by its accelerometer, at most once in 5 s. Main actor only.
class MotionMonitor {
public:
    MotionMonitor(MainActor mainActor, ports::HidEventSystem& events, ports::WallClock& wallClock);
    MotionMonitor(const MotionMonitor&) = delete;

    /// Called on the main actor at each motion that counts.
    std::function<void()> onMotionDetected;

    /// Watches with this sensitivity (0.1 least, 1.0 most), from a new baseline; starting again starts afresh. Silent
    /// on a Mac without an accelerometer: `isAccelerometerAvailable` tells.
    void start(double sensitivity);

    /// Ends the watch; nothing is reported afterwards. Safe when not started.
    void stop();

    /// Whether this Mac has a usable accelerometer, as the last start or refresh found it. One answer for the whole
    /// Mac, kept by the one monitor that the Mac has, so that two Macs can live in one process.
    [[nodiscard]] bool isAccelerometerAvailable() const { return isAccelerometerAvailable_; }

    /// Looks again, and remembers and returns the answer.
    bool refreshAvailability();

    /// Asks the system whether it knows an accelerometer.
    [[nodiscard]] static bool probeAvailability(ports::HidEventSystem& events);

private:
    static Async<void> process(Weak<MotionMonitor> weak, AccelerationSample sample);
    void process(const AccelerationSample& sample);

    MainActor mainActor_;
    ports::HidEventSystem& events_;
    ports::WallClock& wallClock_;
    bool isAccelerometerAvailable_ = false;
    MotionDetector detector_;
    std::unique_ptr<AccelerometerEventHandler> handler_;
    WeakAnchor<MotionMonitor> anchor_{*this};
};

} // namespace sentrel
