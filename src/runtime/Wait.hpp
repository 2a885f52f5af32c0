#pragma once

#include "runtime/CancellationError.hpp"
#include "runtime/TaskState.hpp"

#include <atomic>
#include <coroutine>

namespace sentrel {

/// One suspension of a task: claimed exactly once, by its event or by cancellation, and resumed on the task's own
/// executor. It leaves its lists and timers however it ends, also when its frame is destroyed. Kinds of wait derive
/// from this: `arm` registers with the event and `disarm` leaves it.
class Wait : private CancelHook {
public:
    bool await_ready() const noexcept { return false; }

    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> caller)
    {
        task_ = &caller.promise().task();
        // Under the task's lock: an event that comes while the wait is still being armed resumes the task on its own
        // executor, which stops in `settle` until this is done.
        return task_->beginWait(caller, *this, [this] { return arm(); });
    }

protected:
    Wait() = default;
    ~Wait() = default;

    /// Registers with the event; false when it has come already. Takes the event's lock, never the task's.
    virtual bool arm() = 0;

    /// Leaves the event's lists and timers; called any number of times, before or after the event.
    virtual void disarm() = 0;

    /// Called when the event has come, under the event's lock. False when the wait was over already.
    bool claim(bool byCancellation = false)
    {
        auto pending = Outcome::pending;
        const auto outcome = byCancellation ? Outcome::cancelled : Outcome::completed;
        if (!outcome_.compare_exchange_strong(pending, outcome, std::memory_order_acq_rel)) {
            return false;
        }
        task_->resumeSoon();
        return true;
    }

    /// First call in `await_resume`: leaves all lists. False when cancellation won.
    [[nodiscard]] bool settleQuietly()
    {
        leave();
        // Still pending means that the task had been cancelled before the wait was armed.
        return outcome_.load(std::memory_order_acquire) == Outcome::completed;
    }

    /// The same; throws `CancellationError` when cancellation won.
    void settle()
    {
        if (!settleQuietly()) {
            throw CancellationError{};
        }
    }

    /// For destructors of the kinds of wait: leaves all lists if the frame dies while suspended.
    void leave()
    {
        if (task_ == nullptr || left_) {
            return;
        }
        left_ = true;
        task_->endWait();
        disarm();
    }

    /// Called by `arm` when the event has come already.
    void completeAtOnce() { outcome_.store(Outcome::completed, std::memory_order_release); }

    [[nodiscard]] TaskState& task() const { return *task_; }

private:
    enum class Outcome : unsigned char { pending, completed, cancelled };

    void onCancel() final { claim(true); }
    void detach() final
    {
        left_ = true;
        disarm();
    }

    TaskState* task_ = nullptr;
    std::atomic<Outcome> outcome_ = Outcome::pending;
    bool left_ = false;
};

} // namespace sentrel
