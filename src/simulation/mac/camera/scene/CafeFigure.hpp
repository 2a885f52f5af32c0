#pragma once

#include "simulation/mac/camera/scene/SceneCanvas.hpp"
#include "simulation/mac/camera/scene/SceneLight.hpp"

namespace sentrel::simulation {

/// Draws the person who sits at the Mac, lit by the window on the left and by the screen in front.
void drawFigure(SceneCanvas& canvas, const SceneLight& light);

} // namespace sentrel::simulation
