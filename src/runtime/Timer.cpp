#include "runtime/Timer.hpp"

#include <algorithm>

namespace sentrel {

void TimerList::add(Timer& timer, Instant deadline, std::uint64_t order)
{
    timer.deadline_ = deadline;
    timer.order_ = order;
    timer.isArmed_ = true;
    timers_.insert(find(deadline, order), {deadline, order, &timer});
}

bool TimerList::remove(Timer& timer)
{
    if (!timer.isArmed_) {
        return false;
    }
    timers_.erase(find(timer.deadline_, timer.order_));
    timer.isArmed_ = false;
    return true;
}

std::optional<Instant> TimerList::earliest() const
{
    if (timers_.empty()) {
        return std::nullopt;
    }
    return earliestDeadline();
}

void TimerList::fireEarliest()
{
    Timer& timer = *timers_.back().timer;
    timers_.pop_back();
    timer.isArmed_ = false;
    timer.fire();
}

void TimerList::clear()
{
    for (const Armed& armed : timers_) {
        armed.timer->isArmed_ = false;
    }
    timers_.clear();
}

std::vector<TimerList::Armed>::iterator TimerList::find(Instant deadline, std::uint64_t order)
{
    const auto isLater = [&](const Armed& armed) {
        return armed.deadline != deadline ? armed.deadline > deadline : armed.order > order;
    };
    return std::ranges::partition_point(timers_, isLater);
}

} // namespace sentrel
