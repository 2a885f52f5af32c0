#include "simulation/mac/SimulatedWallClock.hpp"

namespace sentrel::simulation {

Date SimulatedWallClock::now()
{
    return start_.addingSeconds(toSeconds(scheduler_.now() - zero_));
}

} // namespace sentrel::simulation
