#pragma once

#include "runtime/Time.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sentrel {

class TimerList;

/// A deadline that waits in a scheduler. It knows by what it is ordered there, so that cancelling finds it quickly.
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
    friend class TimerList;
    Instant deadline_;
    std::uint64_t order_ = 0;
    bool isArmed_ = false;
};

/// The armed timers of a scheduler, in arming order where deadlines are equal. No lock of its own. A sorted array,
/// since a process has few timers: the earliest, which is the next to go, is the last element, and a timer that is due
/// soon moves few others.
class TimerList {
public:
    /// Arms the timer. Equal deadlines fire in ascending `order`, which is different for each arming.
    void add(Timer& timer, Instant deadline, std::uint64_t order);

    /// Takes the timer out; false when it isn't in.
    bool remove(Timer& timer);

    [[nodiscard]] std::optional<Instant> earliest() const;

    /// Deadline of the earliest timer. The list isn't empty.
    [[nodiscard]] Instant earliestDeadline() const { return timers_.back().deadline; }

    [[nodiscard]] std::size_t size() const { return timers_.size(); }

    /// Order number of the earliest timer. The list isn't empty.
    [[nodiscard]] std::uint64_t earliestOrder() const { return timers_.back().order; }

    /// Takes the earliest timer out and fires it. The list isn't empty.
    void fireEarliest();

    /// Forgets all timers without firing them.
    void clear();

private:
    struct Armed {
        Instant deadline;
        std::uint64_t order;
        Timer* timer;
    };

    /// The first that is not later.
    [[nodiscard]] std::vector<Armed>::iterator find(Instant deadline, std::uint64_t order);

    std::vector<Armed> timers_; // latest first
};

} // namespace sentrel
