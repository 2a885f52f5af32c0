#pragma once

#include "foundation/Bytes.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"

#include <optional>
#include <vector>

namespace sentrel::simulation {

/// What becomes different about the cameras; what holds no value stays as it is.
struct CameraChange {
    std::optional<ports::CaptureAuthorization> authorization;
    std::optional<std::vector<CameraModel>> devices;
    std::optional<std::optional<double>> brightness; ///< 0 to 1; none inside: what the time of day gives
    std::optional<std::optional<Bytes>> photo;       ///< the file that every photo is; none inside: the cafe
    std::optional<Duration> delay;                   ///< from the request of a photo to its callback
    std::optional<bool> fails;                       ///< whether photos end with an error
};

/// Makes the change. A permission or a refusal also answers the system's prompt that is open.
void apply(const CameraChange& change, SimulatedCamera& camera);

} // namespace sentrel::simulation
