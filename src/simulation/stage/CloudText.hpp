#pragma once

#include "simulation/mac/CloudChange.hpp"

#include <string>

namespace sentrel::simulation {

/// The initial account, network and quota, in sentences with a space before each; empty if there is nothing to tell.
[[nodiscard]] std::string accountText(const CloudChange& cloud);

} // namespace sentrel::simulation
