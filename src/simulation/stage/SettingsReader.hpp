#pragma once

#include "core/AlarmSettings.hpp"
#include "simulation/stage/ValueType.hpp"

namespace sentrel::simulation {

/// Fields of `AlarmSettings` with their values, each of its type, in the order of the file.
[[nodiscard]] ValueType<Json> settingsType();

/// The settings with these fields replaced.
[[nodiscard]] AlarmSettings withFields(AlarmSettings settings, const Json& fields);

} // namespace sentrel::simulation
