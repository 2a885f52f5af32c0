#pragma once

#include "simulation/stage/Action.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// Reads a change of the cameras: a map, or for short the devices alone.
[[nodiscard]] ChangeCamera readCamera(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulation
