#pragma once

#include "simulation/storm/Plan.hpp"

#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// A short use of the MacBook on which the product makes many calls. Times are milliseconds since the part before.
struct Occasion {
    std::string_view name;
    std::vector<PlannedStep> setup; ///< before a fault is planned
    std::vector<PlannedStep> acts;  ///< the fault is to strike in these
    std::vector<PlannedStep> after; ///< leaves the MacBook as others expect it
    bool needsPasscode = false;
    bool isSlow = false; ///< derives keys, which takes more processor time than a day of rest
};

/// All of them. Each begins with an armed Mac, and may leave it disarmed or sounding.
[[nodiscard]] const std::vector<Occasion>& occasions();

} // namespace sentrel::simulation
