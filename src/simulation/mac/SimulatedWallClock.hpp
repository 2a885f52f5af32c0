#pragma once

#include "ports/WallClock.hpp"
#include "runtime/Scheduler.hpp"

namespace sentrel::simulation {

/// A wall clock that runs with the scheduler's clock from a given date.
class SimulatedWallClock final : public ports::WallClock {
public:
    SimulatedWallClock(Scheduler& scheduler, Date start) : scheduler_(scheduler), zero_(scheduler.now()), start_(start)
    {
    }

    [[nodiscard]] Date now() override { return start_.addingSeconds(toSeconds(scheduler_.now() - zero_)); }

    /// Sets the clock ahead, or back with negative seconds, as a user or a time server does.
    void move(double seconds) { start_ = start_.addingSeconds(seconds); }

private:
    Scheduler& scheduler_;
    Instant zero_;
    Date start_;
};

} // namespace sentrel::simulation
