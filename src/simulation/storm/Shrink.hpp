#pragma once

#include "simulation/storm/Weather.hpp"

#include <functional>

namespace sentrel::simulation {

/// Leaves out of the plan whatever it can and shortens its waits, as long as `stillFails` says so of what is left. Asks
/// at most `mostTries` times.
[[nodiscard]] Plan shrunk(Plan plan, const std::function<bool(const Plan&)>& stillFails, int mostTries = 600);

} // namespace sentrel::simulation
