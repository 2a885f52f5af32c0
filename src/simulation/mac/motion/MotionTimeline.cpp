#include "simulation/mac/motion/MotionTimeline.hpp"

#include <utility>

namespace sentrel::simulation {

void MotionTimeline::play(MotionRecording recording, Instant start)
{
    recording_ = std::move(recording);
    place_ = 0;
    start_ = start;
}

void MotionTimeline::setResting(bool isResting, Instant now)
{
    if (isResting && !isResting_) {
        restingNext_ = now + interval_;
    }
    isResting_ = isResting;
}

void MotionTimeline::setInterval(Duration interval, Instant now)
{
    interval_ = interval;
    restingNext_ = now + interval_;
}

std::optional<Instant> MotionTimeline::next() const
{
    if (isPlaying()) {
        return playTime();
    }
    return isResting_ ? std::optional{restingNext_} : std::nullopt;
}

Acceleration MotionTimeline::take()
{
    if (isPlaying()) {
        const Instant time = playTime();
        const Acceleration sample = recording_->samples()[place_++].acceleration;
        if (!isPlaying()) {
            recording_.reset();
            skipResting(time + Duration{1});
        }
        return sample;
    }
    restingNext_ += interval_;
    Acceleration sample;
    sample.x = distribution_(generator_);
    sample.y = distribution_(generator_);
    sample.z = distribution_(generator_) + 1.0;
    return sample;
}

void MotionTimeline::skipTo(Instant now)
{
    while (isPlaying() && playTime() < now) {
        ++place_;
    }
    skipResting(now);
}

void MotionTimeline::skipResting(Instant now)
{
    if (restingNext_ < now) {
        const auto missed = (now - restingNext_ - Duration{1}) / interval_ + 1;
        restingNext_ += interval_ * missed;
    }
}

} // namespace sentrel::simulation
