#include "outputs/ToneBuffer.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace sentrel {

namespace {

/// Ratio of the samples' amplitude to the alarm volume; the amplitude is capped at full scale.
constexpr double gain = 1.1;

/// Number of neighbouring samples that advance together, so that the compiler can use vector instructions.
constexpr std::size_t laneCount = 16;

using Lanes = std::array<double, laneCount>;

/// Renders a sine by the recurrence sin(a + d) = 2 cos(d) sin(a) - sin(a - d), where d is a step of all lanes. In
/// double precision the error stays below 1e-9 over the length of a tone, so it is not corrected.
void renderSine(std::span<float> samples, double amplitude, double radiansPerFrame)
{
    const double step = radiansPerFrame * laneCount;
    const double twiceCosine = 2.0 * std::cos(step);
    Lanes current{};
    Lanes previous{};
    for (std::size_t lane = 0; lane < laneCount; ++lane) {
        const double angle = radiansPerFrame * static_cast<double>(lane);
        current[lane] = amplitude * std::sin(angle);
        previous[lane] = amplitude * std::sin(angle - step);
    }
    std::size_t frame = 0;
    for (; frame + laneCount <= samples.size(); frame += laneCount) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            samples[frame + lane] = static_cast<float>(current[lane]);
            const double next = twiceCosine * current[lane] - previous[lane];
            previous[lane] = current[lane];
            current[lane] = next;
        }
    }
    for (std::size_t lane = 0; frame < samples.size(); ++lane, ++frame) {
        samples[frame] = static_cast<float>(current[lane]);
    }
}

} // namespace

void ToneBuffer::render(std::span<float, frameCount> samples, float alarmVolume)
{
    const auto tone = samples.first<toneFrames>();
    const double amplitude = std::min(static_cast<double>(alarmVolume) * gain, 1.0);
    renderSine(tone, amplitude, 2.0 * std::numbers::pi * frequency / sampleRate);
    for (std::size_t i = 0; i < fadeFrames; ++i) {
        const float share = static_cast<float>(i) / static_cast<float>(fadeFrames);
        tone[i] *= share;
        if (i > 0) {
            tone[toneFrames - i] *= share;
        }
    }
    std::ranges::fill(samples.subspan<toneFrames>(), 0.0F);
}

} // namespace sentrel
