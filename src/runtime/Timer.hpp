#pragma once

#include "runtime/Time.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace sentrel {

class TimerHeap;

/// A deadline that waits in a scheduler. It carries its own place there, so that cancelling needs no search.
class Timer {
public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

protected:
    ~Timer() = default;

    /// Called at the deadline, under the scheduler's lock: may only post jobs or open latches.
    virtual void fire() = 0;

private:
    friend class TimerHeap;
    static constexpr std::size_t notArmed = std::numeric_limits<std::size_t>::max();
    Instant deadline_;
    std::uint64_t order_ = 0;
    std::size_t place_ = notArmed;
};

/// The armed timers of a scheduler, earliest first, and in arming order where deadlines are equal. No lock of its own.
class TimerHeap {
public:
    /// Arms the timer. Equal deadlines fire in ascending `order`.
    void add(Timer& timer, Instant deadline, std::uint64_t order);

    /// Takes the timer out; false when it isn't in.
    bool remove(Timer& timer);

    [[nodiscard]] std::optional<Instant> earliest() const;

    /// Deadline of the earliest timer. The heap isn't empty.
    [[nodiscard]] Instant earliestDeadline() const { return timers_.front()->deadline_; }

    [[nodiscard]] std::size_t size() const { return timers_.size(); }

    /// Order number of the earliest timer. The heap isn't empty.
    [[nodiscard]] std::uint64_t earliestOrder() const { return timers_.front()->order_; }

    /// Takes the earliest timer out and fires it. The heap isn't empty.
    void fireEarliest();

    /// Forgets all timers without firing them.
    void clear();

private:
    [[nodiscard]] bool isBefore(std::size_t left, std::size_t right) const;
    void swapPlaces(std::size_t left, std::size_t right);
    void siftUp(std::size_t place);
    void siftDown(std::size_t place);

    std::vector<Timer*> timers_;
};

} // namespace sentrel
