#pragma once

#include "runtime/Scheduler.hpp"
#include "runtime/Wait.hpp"

namespace sentrel {

/// A wait for a deadline of the continuous clock.
class DeadlineWait : public Wait, private Timer {
protected:
    explicit DeadlineWait(Duration span) : span_(span) {}
    ~DeadlineWait() = default;

private:
    bool arm() final
    {
        Scheduler& scheduler = task().scheduler();
        scheduler.startTimer(*this, scheduler.now() + span_);
        return true;
    }
    void disarm() final { task().scheduler().cancelTimer(*this); }
    void fire() final { claim(); }

    Duration span_;
};

class SleepWait final : public DeadlineWait {
public:
    explicit SleepWait(Duration span) : DeadlineWait(span) {}
    ~SleepWait() { leave(); }

    void await_resume() { settle(); }
};

/// `co_await sleepFor(span)`: resumes after the span, on the task's own executor. Throws `CancellationError`.
inline SleepWait sleepFor(Duration span)
{
    return SleepWait{span};
}

class ElapseWait final : public DeadlineWait {
public:
    explicit ElapseWait(Duration span) : DeadlineWait(span) {}
    ~ElapseWait() { leave(); }

    [[nodiscard]] bool await_resume() { return settleQuietly(); }
};

/// `const bool hasElapsed = co_await elapse(span);`: as `sleepFor`, but false when the task was cancelled. For
/// deadlines, which nearly always are cancelled: an exception costs far more than all else that they do.
inline ElapseWait elapse(Duration span)
{
    return ElapseWait{span};
}

} // namespace sentrel
