#pragma once

#include "runtime/Latch.hpp"
#include "runtime/Scheduler.hpp"

#include <atomic>

namespace sentrel {

/// A latch that also opens when its time is up. Shared by the finisher and the waiter. Any thread.
class TimedLatch final : private Timer {
public:
    /// Reports that the awaited work is done.
    void finish()
    {
        isFinished_ = true;
        latch_.open();
    }

    /// Blocks the calling executor for at most this long; false when `finish` had not been called by then. Call once.
    bool waitFor(Scheduler& scheduler, Duration longest)
    {
        scheduler.startTimer(*this, scheduler.now() + longest);
        scheduler.blockUntil(latch_);
        scheduler.cancelTimer(*this);
        return isFinished_;
    }

private:
    void fire() override { latch_.open(); }

    Latch latch_;
    std::atomic<bool> isFinished_ = false;
};

} // namespace sentrel
