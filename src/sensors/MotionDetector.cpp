#include "sensors/MotionDetector.hpp"

#include <algorithm>
#include <cmath>

namespace sentrel {

namespace {

constexpr double leastSensitivity = 0.1;
constexpr double greatestThreshold = 0.9; // g, at the least sensitivity
constexpr double thresholdRange = 0.82;   // g, from the least sensitivity to the greatest
constexpr double restingShare = 0.25;     // of the threshold: nearer to the baseline than this, the machine is at rest
constexpr double adaptationRate = 0.05;   // share of the way from the baseline to a resting sample
constexpr double cooldownSeconds = 5.0;

bool isFinite(const AccelerationSample& sample)
{
    return std::isfinite(sample.x) && std::isfinite(sample.y) && std::isfinite(sample.z);
}

} // namespace

double MotionDetector::thresholdFor(double sensitivity)
{
    // Negated so that a NaN gives the greatest threshold.
    if (!(sensitivity > leastSensitivity)) {
        return greatestThreshold;
    }
    return greatestThreshold - (std::min(sensitivity, 1.0) - leastSensitivity) / 0.9 * thresholdRange;
}

bool MotionDetector::departs(const AccelerationSample& sample)
{
    if (needsBaseline_) {
        // A NaN baseline would make the alarm deaf: no distance from it exceeds the threshold.
        if (isFinite(sample)) {
            baseline_ = sample;
            needsBaseline_ = false;
        }
        return false;
    }
    const double dx = sample.x - baseline_.x;
    const double dy = sample.y - baseline_.y;
    const double dz = sample.z - baseline_.z;
    const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
    if (distance < threshold_ * restingShare) {
        baseline_.x += adaptationRate * dx;
        baseline_.y += adaptationRate * dy;
        baseline_.z += adaptationRate * dz;
    }
    return distance > threshold_;
}

bool MotionDetector::accept(Date now)
{
    if (lastTriggerDate_ && now.secondsSince(*lastTriggerDate_) < cooldownSeconds) {
        return false;
    }
    lastTriggerDate_ = now;
    return true;
}

} // namespace sentrel
