#pragma once

#include "foundation/Date.hpp"

#include <optional>

namespace sentrel {

/// One reading of the accelerometer, in units of standard gravity.
struct AccelerationSample {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// Decides from acceleration samples when the computer is being moved. It keeps a baseline of the machine at rest,
/// which follows slow drift, and fires on a sample farther from the baseline than the threshold, at most once in 5 s. A
/// plain value: no clock, no allocation.
class MotionDetector {
public:
    explicit MotionDetector(double threshold) : threshold_(threshold) {}

    /// The threshold in g for a sensitivity: 0.9 up to sensitivity 0.1, then linearly down to 0.08 at 1.0 and above.
    [[nodiscard]] static double thresholdFor(double sensitivity);

    /// Forgets the baseline: the next sample becomes it.
    void forgetBaseline() { needsBaseline_ = true; }

    /// Processes a sample; true when it lies beyond the threshold.
    bool departs(const AccelerationSample& sample);

    /// True unless a departure was accepted in the last 5 s; `now` then starts the next 5 s.
    bool accept(Date now);

    /// Both steps in one: true when the sample fires.
    bool feed(const AccelerationSample& sample, Date now) { return departs(sample) && accept(now); }

    [[nodiscard]] const AccelerationSample& baseline() const { return baseline_; }

private:
    double threshold_;
    AccelerationSample baseline_;
    bool needsBaseline_ = true;
    std::optional<Date> lastTriggerDate_;
};

} // namespace sentrel
