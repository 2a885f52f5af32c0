#pragma once

#include "foundation/Bytes.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"

#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A change of the cameras; members without a value stay as they are.
struct CameraChange {
    std::optional<ports::CaptureAuthorization> authorization;
    std::optional<std::vector<CameraModel>> devices;
    std::optional<std::optional<double>> brightness; ///< 0 to 1; inner none: by the time of day
    std::optional<int> share;                        ///< divides the sides of photos of the cafe
    std::optional<std::optional<Bytes>> photo;       ///< replaces every photo; inner none: the cafe
    std::string photoName;                           ///< of the photo's file, for the story
    std::optional<Duration> delay;                   ///< from a photo's request to its callback
    std::optional<bool> fails;                       ///< whether photos end with an error
};

/// Makes the change. Granting or denying access also answers an open system prompt.
void apply(const CameraChange& change, SimulatedCamera& camera);

} // namespace sentrel::simulation
