#include "simulation/stage/MotionMeter.hpp"

#include "simulation/stage/MacSession.hpp"

#include <cmath>

namespace sentrel::simulation {

std::optional<double> motionThreshold(MacSession& session)
{
    if (session.app() == nullptr) {
        return std::nullopt;
    }
    const AlarmSettings& settings = session.app()->settings().settings();
    return settings.triggerOnMotion ? std::optional{MotionDetector::thresholdFor(settings.motionSensitivity)}
                                    : std::nullopt;
}

double MotionMeter::distanceOf(const Acceleration& sample, std::optional<double> threshold)
{
    const double wanted = threshold.value_or(threshold_);
    if (!detector_ || wanted != threshold_) {
        detector_.emplace(wanted);
        threshold_ = wanted;
    }
    static_cast<void>(detector_->departs({sample.x, sample.y, sample.z}));
    const AccelerationSample& rest = detector_->baseline();
    const double distance = std::hypot(sample.x - rest.x, sample.y - rest.y, sample.z - rest.z);
    return std::isfinite(distance) ? distance : 0.0;
}

} // namespace sentrel::simulation
