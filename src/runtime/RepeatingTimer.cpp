#include "runtime/RepeatingTimer.hpp"

#include <utility>

namespace sentrel {

RepeatingTimer::RepeatingTimer(Scheduler& scheduler, Executor& executor, Duration interval, std::function<void()> tick)
    : scheduler_(scheduler),
      executor_(executor),
      interval_(interval),
      deadline_(scheduler.now() + interval),
      tick_(std::make_shared<const std::function<void()>>(std::move(tick)))
{
    scheduler_.startTimer(*this, deadline_);
}

RepeatingTimer::~RepeatingTimer()
{
    scheduler_.cancelTimer(*this);
    executor_.withdraw(*this);
}

void RepeatingTimer::run()
{
    const Instant now = scheduler_.now();
    deadline_ += interval_;
    if (deadline_ <= now) {
        deadline_ += interval_ * ((now - deadline_) / interval_ + 1);
    }
    scheduler_.startTimer(*this, deadline_);
    const auto tick = tick_; // the tick may destroy this timer
    (*tick)();
}

} // namespace sentrel
