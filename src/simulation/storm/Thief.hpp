#pragma once

#include "simulation/storm/Dice.hpp"
#include "simulation/storm/DrawnMac.hpp"
#include "simulation/storm/Plan.hpp"

#include <vector>

namespace sentrel::simulation {

/// A thief's attack on an armed Mac. Times are milliseconds since the step before.
[[nodiscard]] std::vector<PlannedStep> attack(Dice& dice);

/// One attempt of a thief to silence the alarm. Times as above.
[[nodiscard]] std::vector<PlannedStep> resistance(Dice& dice, const DrawnMac& mac);

} // namespace sentrel::simulation
