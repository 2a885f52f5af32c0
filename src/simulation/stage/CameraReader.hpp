#pragma once

#include "simulation/stage/Action.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// What a scenario says of the cameras: a map, or in short the devices alone.
[[nodiscard]] ChangeCamera readCamera(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulation
