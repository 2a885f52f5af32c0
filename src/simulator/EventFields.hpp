#pragma once

#include "platform/simulated/Event.hpp"

#include <optional>
#include <string_view>

namespace sentrel::simulator {

/// The field as a number; none when it isn't there or is no number.
[[nodiscard]] std::optional<double> numberIn(const simulated::Event& event, std::string_view field);

/// Whether the field is there and true.
[[nodiscard]] bool flagIn(const simulated::Event& event, std::string_view field);

} // namespace sentrel::simulator
