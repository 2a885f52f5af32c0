#pragma once

#include "simulation/Event.hpp"

#include <optional>
#include <string_view>

namespace sentrel::simulation {

/// The field as a number; none when it isn't there or is no number.
[[nodiscard]] std::optional<double> numberIn(const simulation::Event& event, std::string_view field);

/// Whether the field is there and true.
[[nodiscard]] bool flagIn(const simulation::Event& event, std::string_view field);

} // namespace sentrel::simulation
