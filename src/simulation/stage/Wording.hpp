#pragma once

#include "simulation/mac/camera/SimulatedCamera.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

// Numbers and texts in sentences of the story.

/// The text in typographic quotes.
[[nodiscard]] std::string quotation(std::string_view text);

/// 0.8333 as "83 %".
[[nodiscard]] std::string percent(double level);

/// The number with that many decimals.
[[nodiscard]] std::string decimal(double number, int decimals);

/// The number in its shortest form, of at most three decimals.
[[nodiscard]] std::string plainNumber(double number);

/// The names of the cameras, such as "A, B and C".
[[nodiscard]] std::string listed(const std::vector<CameraModel>& cameras);

} // namespace sentrel::simulation
