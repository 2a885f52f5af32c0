#pragma once

#include "runtime/Scheduler.hpp"
#include "runtime/Wait.hpp"

#include <mutex>
#include <optional>

namespace sentrel {

/// A counting semaphore for tasks. Waiters are served in the order in which they came. Signalling may happen on any
/// thread; the semaphore outlives its waits.
class Semaphore {
public:
    explicit Semaphore(int count = 0) : count_(count) {}
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Wakes the oldest waiter, or adds one to the count.
    void signal();

    class SignalWait;

    /// `co_await semaphore.wait()`: true once signalled. Throws `CancellationError`.
    SignalWait wait();

    /// As `wait`, up to a deadline of the continuous clock; false when the deadline came first.
    SignalWait waitUntil(Instant deadline);

private:
    bool takeOrQueue(SignalWait& wait);
    void leaveQueue(SignalWait& wait);

    std::mutex mutex_;
    int count_ = 0;
    SignalWait* firstWaiter_ = nullptr;
};

class Semaphore::SignalWait final : public Wait, private Timer {
public:
    SignalWait(Semaphore& semaphore, std::optional<Instant> deadline) : semaphore_(semaphore), deadline_(deadline) {}
    ~SignalWait() { leave(); }

    bool await_resume()
    {
        settle();
        return signalled_;
    }

private:
    friend class Semaphore;
    bool arm() override;
    void disarm() override;
    void fire() override { claim(); }
    void takeAtOnce();
    bool takeSignal();

    Semaphore& semaphore_;
    std::optional<Instant> deadline_;
    bool signalled_ = false;
    SignalWait* nextWaiter_ = nullptr;
};

inline Semaphore::SignalWait Semaphore::wait()
{
    return SignalWait{*this, std::nullopt};
}

inline Semaphore::SignalWait Semaphore::waitUntil(Instant deadline)
{
    return SignalWait{*this, deadline};
}

} // namespace sentrel
