#include "simulation/mac/motion/MotionTimeline.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

/// The next 64 bits of a small and fast generator (SplitMix64).
std::uint64_t nextBits(std::uint64_t& state)
{
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t bits = state;
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31U);
}

} // namespace

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
    sample.x = nextNoise();
    sample.y = nextNoise();
    sample.z = nextNoise() + 1.0;
    return sample;
}

/// The sum of four uniform numbers is normal enough for a sensor, costs a fraction of the library's distribution, and
/// is the same with every library.
double MotionTimeline::nextNoise()
{
    constexpr double mean = 4 * 65535 / 2.0;
    constexpr double deviation = 37837.2; // square root of 4 * (65536^2 - 1) / 12
    std::uint64_t bits = nextBits(noiseState_);
    std::uint64_t sum = 0;
    for (int part = 0; part < 4; ++part) {
        sum += bits & 0xFFFFU;
        bits >>= 16U;
    }
    return (static_cast<double>(sum) - mean) * (noise / deviation);
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
