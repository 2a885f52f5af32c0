#pragma once

#include "simulation/mac/MacDescription.hpp"

#include <string>
#include <string_view>

namespace sentrel::simulation {

// The story's wording where it depends on plain values only.

/// The Mac's initial state, in a few sentences.
[[nodiscard]] std::string describe(const MacDescription& mac);

/// The English title of a trigger's raw value; the value itself for an unknown one.
[[nodiscard]] std::string reasonTitle(std::string_view rawValue);

} // namespace sentrel::simulation
