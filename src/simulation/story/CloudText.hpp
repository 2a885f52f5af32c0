#pragma once

#include "simulation/mac/CloudChange.hpp"
#include "simulation/stage/Action.hpp"

#include <string>

namespace sentrel::simulation {

// The wording of the story about iCloud, the network and the phone.

/// The account that a Mac begins with, in a sentence with a space before it; empty for a Mac without one.
[[nodiscard]] std::string accountText(const simulation::CloudChange& cloud);

[[nodiscard]] std::string describe(const ChangeCloud& action);
[[nodiscard]] std::string describe(const UsePhone& action);
[[nodiscard]] std::string describe(const DeleteAlerts& action);

} // namespace sentrel::simulation
