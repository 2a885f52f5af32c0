#pragma once

#include "simulation/mac/camera/scene/SceneCanvas.hpp"

namespace sentrel::simulation {

/// The light of one time of day, outside and in the room.
struct SceneLight {
    Rgb skyTop;
    Rgb skyBottom;
    Rgb daylight;  ///< light through the window
    float sun = 0; ///< strength of the sunlight inside, 0 to 1
    float lamps = 0;
    float night = 0;

    /// The light at a time of day, 0 to 24 hours.
    static SceneLight at(float hour);

    /// The colour of a surface that gets this share of the daylight; the rest is lamplight.
    [[nodiscard]] Rgb on(Rgb surface, float share = 1) const;
};

} // namespace sentrel::simulation
