#pragma once

#include "simulation/storm/Dice.hpp"
#include "simulation/storm/Plan.hpp"

namespace sentrel::simulation {

/// The parts of a MacBook that was drawn by lot which matter to its owner and to thieves.
struct DrawnMac {
    bool hasHeadphones = false;
    bool hasPasscode = false;
    bool hasAccount = false; ///< is signed in to iCloud from the beginning
};

/// Draws a MacBook and its settings, and writes them into the plan.
[[nodiscard]] DrawnMac describeMac(Dice& dice, Plan& plan);

} // namespace sentrel::simulation
