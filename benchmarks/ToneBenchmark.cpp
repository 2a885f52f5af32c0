#include "BesideFloor.hpp"

#include "outputs/ToneBuffer.hpp"

#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace sentrel {
namespace {

/// The tone by its definition, sample for sample.
void renderPlainly(std::span<float> samples, double volume)
{
    constexpr auto toneLength = static_cast<double>(ToneBuffer::toneFrames);
    constexpr auto fade = static_cast<double>(ToneBuffer::fadeFrames);
    const double amplitude = std::min(volume * 1.1, 1.0);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto frame = static_cast<double>(i);
        const double envelope = std::min({frame / fade, (toneLength - frame) / fade, 1.0});
        const double angle = 2.0 * std::numbers::pi * ToneBuffer::frequency * frame / ToneBuffer::sampleRate;
        samples[i] = i < ToneBuffer::toneFrames ? static_cast<float>(amplitude * std::sin(angle) * envelope) : 0.0F;
    }
}

void toneBesideSine(benchmark::State& state)
{
    std::vector<float> samples(ToneBuffer::frameCount);
    const std::span<float, ToneBuffer::frameCount> all{samples};
    const auto floor = [&] {
        renderPlainly(all, 0.8);
        benchmark::DoNotOptimize(samples.data());
        benchmark::ClobberMemory();
    };
    const auto work = [&] {
        ToneBuffer::render(all, 0.8F);
        benchmark::DoNotOptimize(samples.data());
        benchmark::ClobberMemory();
    };
    measureBesideFloor(state, 1.0, 0.25, floor, work);
}
BENCHMARK(toneBesideSine)->UseManualTime();

} // namespace
} // namespace sentrel
