#pragma once

#include "foundation/Json.hpp"
#include "simulation/stage/YamlValue.hpp"

#include <nlohmann/json.hpp>

namespace sentrel::simulation {

/// Fields of `AlarmSettings` with their values, each of its type, in the order of the file. Throws `SourceFault`.
[[nodiscard]] Json readSettings(const YamlValue& value);

} // namespace sentrel::simulation
