#pragma once

#include <cstddef>
#include <span>

namespace sentrel {

/// The sound of the alarm: one period of 0.9 s, looped while it sounds, with a sine of 880 Hz in its first 0.35 s.
class ToneBuffer {
public:
    static constexpr double sampleRate = 44'100.0;    ///< frames a second
    static constexpr std::size_t frameCount = 39'690; ///< 0.9 s
    static constexpr std::size_t toneFrames = 15'435; ///< 0.35 s
    static constexpr std::size_t fadeFrames = 220;    ///< linear, at either end of the tone, against clicks
    static constexpr double frequency = 880.0;        ///< hertz

    /// Writes the period, `frameCount` samples, for an alarm volume of 0 to 1. Allocates nothing.
    static void render(std::span<float, frameCount> samples, float alarmVolume);
};

} // namespace sentrel
