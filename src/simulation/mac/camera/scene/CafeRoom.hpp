#pragma once

#include "simulation/mac/camera/scene/SceneCanvas.hpp"
#include "simulation/mac/camera/scene/SceneLight.hpp"

namespace sentrel::simulation {

/// Draws the empty cafe: window, lamps, shelf, tables, and the clock at this minute of the day.
void drawRoom(SceneCanvas& canvas, const SceneLight& light, int minuteOfDay);

} // namespace sentrel::simulation
