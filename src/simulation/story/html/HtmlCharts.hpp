#pragma once

#include "simulation/story/html/StoryRecord.hpp"

#include <string>

namespace sentrel::simulation {

/// The loudness of a clip as an SVG element that stretches to its place.
[[nodiscard]] std::string waveform(const SoundClip& clip);

/// The course of motion over the whole story as an SVG element that stretches to its place: the distance from rest, the
/// threshold, and the times at which something was heard.
[[nodiscard]] std::string motionChart(const StoryRecord& record);

/// The place of a value on the chart of motion, as a share of its height from the top.
[[nodiscard]] double placeOnMotionChart(const StoryRecord& record, double value);

} // namespace sentrel::simulation
