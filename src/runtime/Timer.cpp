#include "runtime/Timer.hpp"

#include <utility>

namespace sentrel {

void TimerHeap::add(Timer& timer, Instant deadline, std::uint64_t order)
{
    timer.deadline_ = deadline;
    timer.order_ = order;
    timer.place_ = timers_.size();
    timers_.push_back(&timer);
    siftUp(timer.place_);
}

bool TimerHeap::remove(Timer& timer)
{
    const std::size_t place = timer.place_;
    if (place >= timers_.size() || timers_[place] != &timer) {
        return false;
    }
    swapPlaces(place, timers_.size() - 1);
    timers_.pop_back();
    timer.place_ = Timer::notArmed;
    if (place < timers_.size()) {
        siftUp(place);
        siftDown(place);
    }
    return true;
}

std::optional<Instant> TimerHeap::earliest() const
{
    if (timers_.empty()) {
        return std::nullopt;
    }
    return timers_.front()->deadline_;
}

void TimerHeap::fireEarliest()
{
    Timer& timer = *timers_.front();
    remove(timer);
    timer.fire();
}

void TimerHeap::clear()
{
    for (Timer* timer : timers_) {
        timer->place_ = Timer::notArmed;
    }
    timers_.clear();
}

bool TimerHeap::isBefore(std::size_t left, std::size_t right) const
{
    const Timer& a = *timers_[left];
    const Timer& b = *timers_[right];
    return a.deadline_ != b.deadline_ ? a.deadline_ < b.deadline_ : a.order_ < b.order_;
}

void TimerHeap::swapPlaces(std::size_t left, std::size_t right)
{
    std::swap(timers_[left], timers_[right]);
    timers_[left]->place_ = left;
    timers_[right]->place_ = right;
}

void TimerHeap::siftUp(std::size_t place)
{
    while (place > 0 && isBefore(place, (place - 1) / 2)) {
        swapPlaces(place, (place - 1) / 2);
        place = (place - 1) / 2;
    }
}

void TimerHeap::siftDown(std::size_t place)
{
    for (;;) {
        std::size_t least = place;
        for (const std::size_t child : {2 * place + 1, 2 * place + 2}) {
            if (child < timers_.size() && isBefore(child, least)) {
                least = child;
            }
        }
        if (least == place) {
            return;
        }
        swapPlaces(place, least);
        place = least;
    }
}

} // namespace sentrel
