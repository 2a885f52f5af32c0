#pragma once

#include "sensors/MotionDetector.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"

#include <optional>

namespace sentrel::simulation {

class MacSession;

/// The distance from rest in g that sets off the alarm; none while motion doesn't.
[[nodiscard]] std::optional<double> motionThreshold(MacSession& session);

/// Shows how far the Mac is from rest, by the product's own detector. One thread.
class MotionMeter {
public:
    /// The distance of a sample from rest, in g; 0 for one that isn't finite. Rest is learned anew whenever the
    /// threshold changes; without one the last stays.
    [[nodiscard]] double distanceOf(const Acceleration& sample, std::optional<double> threshold);

private:
    double threshold_ = 0.0;
    std::optional<MotionDetector> detector_;
};

} // namespace sentrel::simulation
