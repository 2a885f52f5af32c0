#include "simulation/mac/camera/scene/SceneLight.hpp"

#include <array>

namespace sentrel::simulation {

namespace {

struct Hour {
    float hour;
    SceneLight light;
};

constexpr Rgb nightSky{0.02F, 0.03F, 0.08F};
constexpr Rgb lamplight{1.00F, 0.78F, 0.52F};

// Columns: sky above, sky at the horizon, daylight indoors, sun, lamps, night.
constexpr std::array<Hour, 9> day{{
    {0.0F, {nightSky, {0.07F, 0.08F, 0.16F}, {0.05F, 0.06F, 0.11F}, 0, 0.52F, 1}},
    {5.0F, {nightSky, {0.10F, 0.10F, 0.20F}, {0.06F, 0.07F, 0.12F}, 0, 0.50F, 1}},
    {6.5F, {{0.30F, 0.38F, 0.60F}, {0.98F, 0.68F, 0.50F}, {0.48F, 0.42F, 0.44F}, 0.2F, 0.36F, 0.3F}},
    {8.5F, {{0.40F, 0.62F, 0.92F}, {0.86F, 0.90F, 0.95F}, {0.84F, 0.80F, 0.76F}, 0.9F, 0.16F, 0}},
    {13.0F, {{0.32F, 0.58F, 0.94F}, {0.80F, 0.90F, 0.98F}, {0.92F, 0.91F, 0.90F}, 0.6F, 0.12F, 0}},
    {17.0F, {{0.38F, 0.56F, 0.86F}, {0.96F, 0.86F, 0.70F}, {0.82F, 0.74F, 0.64F}, 1.0F, 0.20F, 0}},
    {19.5F, {{0.22F, 0.22F, 0.46F}, {0.96F, 0.50F, 0.34F}, {0.36F, 0.28F, 0.32F}, 0.3F, 0.42F, 0.5F}},
    {21.5F, {nightSky, {0.09F, 0.09F, 0.18F}, {0.06F, 0.07F, 0.13F}, 0, 0.54F, 1}},
    {24.0F, {nightSky, {0.07F, 0.08F, 0.16F}, {0.05F, 0.06F, 0.11F}, 0, 0.52F, 1}},
}};

constexpr float mix(float a, float b, float share)
{
    return a + (b - a) * share;
}

} // namespace

SceneLight SceneLight::at(float hour)
{
    std::size_t later = 1;
    while (later + 1 < day.size() && day[later].hour < hour) {
        ++later;
    }
    const auto& [fromHour, from] = day[later - 1];
    const auto& [toHour, to] = day[later];
    const float share = std::clamp((hour - fromHour) / (toHour - fromHour), 0.0F, 1.0F);
    return {mix(from.skyTop, to.skyTop, share),     mix(from.skyBottom, to.skyBottom, share),
            mix(from.daylight, to.daylight, share), mix(from.sun, to.sun, share),
            mix(from.lamps, to.lamps, share),       mix(from.night, to.night, share)};
}

Rgb SceneLight::on(Rgb surface, float share) const
{
    return surface * (daylight * share + lamplight * lamps);
}

} // namespace sentrel::simulation
