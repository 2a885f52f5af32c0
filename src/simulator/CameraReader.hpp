#pragma once

#include "simulator/Action.hpp"
#include "simulator/ValueReader.hpp"

namespace sentrel::simulator {

/// What a scenario says of the cameras: a map, or in short the devices alone.
[[nodiscard]] ChangeCamera readCamera(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulator
