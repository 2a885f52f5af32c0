#pragma once

#include "simulation/mac/motion/MotionRecording.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sentrel::simulation {

/// The schedule of the accelerometer's samples: those of a playing recording, else of a machine at rest with sensor
/// noise, else none. Times are exact and don't drift. Not thread-safe.
class MotionTimeline {
public:
    /// Standard deviation of the sensor's noise on each axis, in g. It never exceeds 3.5 times that.
    static constexpr double noise = 0.002;

    /// Time between two samples until a report interval is set.
    static constexpr Duration usualInterval = std::chrono::milliseconds{20};

    /// Seeds the noise.
    explicit MotionTimeline(std::uint64_t seed) : noiseState_(seed) {}

    /// Plays the recording from `start` on; replaces one that is still playing.
    void play(MotionRecording recording, Instant start);

    /// Begins or ends the samples of a machine at rest; they pause while a recording plays.
    void setResting(bool isResting, Instant now);
    [[nodiscard]] bool isResting() const { return isResting_; }

    /// Time between two samples of a machine at rest, counted from now.
    void setInterval(Duration interval, Instant now);

    /// When the next sample is due; none if there is none.
    [[nodiscard]] std::optional<Instant> next() const;

    /// The next sample, which must exist; the timeline moves on.
    Acceleration take();

    /// Forgets the samples that were due before `now`.
    void skipTo(Instant now);

private:
    [[nodiscard]] bool isPlaying() const { return recording_ && place_ < recording_->samples().size(); }
    void skipResting(Instant now);
    [[nodiscard]] double nextNoise();
    [[nodiscard]] Instant playTime() const { return start_ + recording_->samples()[place_].at; }

    std::optional<MotionRecording> recording_;
    std::size_t place_ = 0;
    Instant start_{};
    bool isResting_ = false;
    Duration interval_ = usualInterval;
    Instant restingNext_{};
    std::uint64_t noiseState_;
};

} // namespace sentrel::simulation
