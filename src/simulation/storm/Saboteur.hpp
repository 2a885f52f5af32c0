#pragma once

#include "simulation/storm/Dice.hpp"
#include "simulation/storm/Weather.hpp"

#include <string>
#include <vector>

namespace sentrel::simulation {

/// Makes up faults of ports and of the cloud, as actions of the scenario language.
class Saboteur {
public:
    Saboteur(Dice& dice, const std::vector<FaultyPort>& ports, const std::vector<FaultPoint>& points)
        : dice_(dice), ports_(ports), points_(points)
    {
    }

    /// Any fault.
    [[nodiscard]] std::string nextFault();

    /// The fault of that point, for an occasion on which the product makes so many calls there.
    [[nodiscard]] std::string strike(const FaultPoint& point, std::uint32_t calls);

    /// The actions that end the faults so far.
    [[nodiscard]] std::vector<std::string> cures();

    /// A call may hang, or have ended the process: only a new one works again.
    bool mustRelaunch = false;

private:
    [[nodiscard]] std::string breakDevice();
    [[nodiscard]] std::string disturbCloud();

    Dice& dice_;
    const std::vector<FaultyPort>& ports_;
    const std::vector<FaultPoint>& points_;
    std::vector<std::string> broken_; ///< ports whose devices were broken
};

} // namespace sentrel::simulation
