#pragma once

#include "platform/simulated/scene/SceneCanvas.hpp"
#include "platform/simulated/scene/SceneLight.hpp"

namespace sentrel::simulated {

/// Draws the cafe without anybody: window, lamps, shelf, tables, and the clock at this minute of the day.
void drawRoom(SceneCanvas& canvas, const SceneLight& light, int minuteOfDay);

} // namespace sentrel::simulated
