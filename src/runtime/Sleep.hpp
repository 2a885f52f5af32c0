#pragma once

#include "runtime/Scheduler.hpp"
#include "runtime/Wait.hpp"

namespace sentrel {

/// The wait for a deadline of the continuous clock.
class SleepWait final : public Wait, private Timer {
public:
    explicit SleepWait(Duration span) : span_(span) {}
    ~SleepWait() { leave(); }

    void await_resume() { settle(); }

private:
    bool arm() override
    {
        Scheduler& scheduler = task().scheduler();
        scheduler.startTimer(*this, scheduler.now() + span_);
        return true;
    }
    void disarm() override { task().scheduler().cancelTimer(*this); }
    void fire() override { claim(); }

    Duration span_;
};

/// `co_await sleepFor(span)`: resumes after the span, on the task's own executor. Throws `CancellationError`.
inline SleepWait sleepFor(Duration span)
{
    return SleepWait{span};
}

} // namespace sentrel
