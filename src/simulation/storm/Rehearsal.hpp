#pragma once

#include "simulation/storm/Weather.hpp"

#include <filesystem>
#include <vector>

namespace sentrel::simulation {

/// Plays each occasion once without faults, and returns the points at which a fault can strike: every call of the
/// product that was made, with each fate, and every fault that a device was asked for. Always in the same order.
[[nodiscard]] std::vector<FaultPoint> rehearse(const std::filesystem::path& resources);

} // namespace sentrel::simulation
