#pragma once

#include "simulation/Event.hpp"

#include <optional>
#include <string_view>

namespace sentrel::simulation {

/// The field as a number; none if it is missing or not a number.
[[nodiscard]] std::optional<double> numberIn(const Event& event, std::string_view field);

/// Whether the field exists and is true.
[[nodiscard]] bool flagIn(const Event& event, std::string_view field);

} // namespace sentrel::simulation
