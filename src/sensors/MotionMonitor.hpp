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

/// Reports when the computer is moved, by its accelerometer, at most once in 5 s. Main actor only.
class MotionMonitor {
public:
    MotionMonitor(MainActor mainActor, ports::HidEventSystem& events, ports::WallClock& wallClock);
    MotionMonitor(const MotionMonitor&) = delete;

    /// Called on the main actor for each reported motion.
    std::function<void()> onMotionDetected;

    /// Starts watching with this sensitivity (0.1 to 1.0) and a new baseline. A second start restarts the watch.
    /// Reports nothing on a Mac without an accelerometer; see `isAccelerometerAvailable`.
    void start(double sensitivity);

    /// Ends the watch; nothing is reported afterwards. Safe when not started.
    void stop();

    /// True when the last start or refresh found a usable accelerometer. Not static, so that two simulated Macs can
    /// live in one process.
    [[nodiscard]] bool isAccelerometerAvailable() const { return isAccelerometerAvailable_; }

    /// Probes again; stores and returns the answer.
    bool refreshAvailability();

    /// True when the system knows an accelerometer.
    [[nodiscard]] static bool probeAvailability(ports::HidEventSystem& events);

private:
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
