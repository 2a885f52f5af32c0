#pragma once

#include "runtime/Timer.hpp"

#include <memory>

namespace sentrel::mac {

/// The armed timers, woken by dispatch timer sources without leeway. Any thread.
class DispatchTimers {
public:
    DispatchTimers();

    /// Drops all timers; none fires after this returns.
    ~DispatchTimers();

    /// The continuous clock: it runs on while the machine sleeps.
    [[nodiscard]] static Instant now();

    void start(Timer& timer, Instant deadline);

    /// False when the timer wasn't armed. When this returns, it isn't firing.
    bool cancel(Timer& timer);

private:
    class Waker;
    std::unique_ptr<Waker> waker_;
};

} // namespace sentrel::mac
