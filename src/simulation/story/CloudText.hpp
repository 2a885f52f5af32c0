#pragma once

#include "simulation/mac/CloudChange.hpp"
#include "simulation/stage/Action.hpp"

#include <string>

namespace sentrel::simulation {

// The wording of the story about iCloud, the network and the phone.

/// The initial account, network and quota, in sentences with a space before each; empty if there is nothing to tell.
[[nodiscard]] std::string accountText(const CloudChange& cloud);

[[nodiscard]] std::string describe(const ChangeCloud& action);
[[nodiscard]] std::string describe(const UsePhone& action);
[[nodiscard]] std::string describe(const DeleteAlerts& action);

} // namespace sentrel::simulation
