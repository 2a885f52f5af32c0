#pragma once

#include "platform/simulated/scene/SceneCanvas.hpp"
#include "platform/simulated/scene/SceneLight.hpp"

namespace sentrel::simulated {

/// Draws the person who sits at the Mac, lit by the window on the left and by the screen in front.
void drawFigure(SceneCanvas& canvas, const SceneLight& light);

} // namespace sentrel::simulated
