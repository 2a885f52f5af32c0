#include "platform/simulated/SimulatedWallClock.hpp"

namespace sentrel::simulated {

Date SimulatedWallClock::now()
{
    return start_.addingSeconds(toSeconds(scheduler_.now() - zero_));
}

} // namespace sentrel::simulated
