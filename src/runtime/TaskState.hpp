#pragma once

#include "runtime/Executor.hpp"

#include <atomic>
#include <coroutine>
#include <mutex>

namespace sentrel {

class Scheduler;
class TaskRegistry;
class TaskState;

/// The callbacks of a suspended wait by which cancellation reaches it.
class CancelHook {
public:
    CancelHook() = default;
    CancelHook(const CancelHook&) = delete;
    CancelHook& operator=(const CancelHook&) = delete;

    /// Called when the task is cancelled, under its lock: may only claim the wait and post the task.
    virtual void onCancel() = 0;

    /// Called when the task will never resume, without its lock: leaves every list and timer.
    virtual void detach() = 0;

protected:
    ~CancelHook() = default;
};

/// Notified on a serial queue's executor when a task that occupies the queue begins and finishes.
class QueueHold {
public:
    virtual void taskBegan(TaskState& task) = 0;
    virtual void taskFinished() = 0;

protected:
    ~QueueHold() = default;
};

/// A wait for a task's end, linked into that task.
class TaskWaiter {
public:
    TaskWaiter() = default;
    TaskWaiter(const TaskWaiter&) = delete;
    TaskWaiter& operator=(const TaskWaiter&) = delete;

    /// Called when the awaited task has finished, under its lock: may only claim the wait and post.
    virtual void onFinish() = 0;

protected:
    ~TaskWaiter() = default;

private:
    friend class TaskState;
    TaskWaiter* next_ = nullptr;
};

/// The part of a task that doesn't depend on its value: executor, cancellation, waiters and lifetime of the frame. It
/// lives in the promise of the task's root coroutine, so that a task is one allocation, and is the job that resumes the
/// task, so that a hop allocates nothing. Operations may be called on any thread.
class TaskState final : public Job {
public:
    /// Makes a task of the coroutine and posts its first turn to `front`; later turns go to `executor`. The caller
    /// receives one reference.
    void start(Scheduler& scheduler, Executor& executor, Executor& front, QueueHold* hold,
               std::coroutine_handle<> root);

    void retain() { references_.fetch_add(1, std::memory_order_relaxed); }
    void release();

    /// Interrupts the wait under way and every later one with a `CancellationError`.
    void cancel();
    [[nodiscard]] bool isCancelled() const { return cancelled_.load(std::memory_order_acquire); }
    [[nodiscard]] bool isFinished() const { return finished_.load(std::memory_order_acquire); }

    /// Ends the task where it waits: none of its code runs again. For owners that die with work under way. On the
    /// task's executor this takes effect at once, except for a task that abandons itself, which runs on to its next
    /// wait.
    void abandon();

    /// True when the task was ended before its coroutine finished.
    [[nodiscard]] bool wasCutShort() const { return cutShort_; }

    /// Marks the task as finished. Called last, when the root coroutine has finished or never will.
    void finish();

    /// Links a waiter in; false when the task has finished already.
    bool addWaiter(TaskWaiter& waiter);
    void removeWaiter(TaskWaiter& waiter);

    /// Under the task's lock: records the resume point and the cancellation hook, then arms the wait. False when the
    /// task must not suspend: it is cancelled, or the event has come already.
    template <class Arm> bool beginWait(std::coroutine_handle<> resumePoint, CancelHook& hook, Arm arm)
    {
        const std::lock_guard guard{lock_};
        resumePoint_ = resumePoint;
        if (abandoned_.load(std::memory_order_acquire)) {
            resumeSoon(); // that turn ends the task
            return true;
        }
        if (cancelled_.load(std::memory_order_relaxed)) {
            return false;
        }
        hook_ = &hook;
        if (arm()) {
            return true;
        }
        hook_ = nullptr;
        return false;
    }

    void endWait();

    /// Posts the next turn. An armed wait must have been claimed by the caller.
    void resumeSoon() { executor_->post(*this); }

    [[nodiscard]] Scheduler& scheduler() const { return *scheduler_; }

    void run() override;
    void drop() override;

private:
    friend class TaskRegistry;
    void takeTurn();
    void endUnrun();

    Scheduler* scheduler_ = nullptr;
    Executor* executor_ = nullptr;
    QueueHold* hold_ = nullptr;
    std::coroutine_handle<> root_;
    std::coroutine_handle<> resumePoint_;
    std::mutex lock_;
    CancelHook* hook_ = nullptr;
    TaskWaiter* waiters_ = nullptr;
    std::atomic<int> references_ = 0;
    std::atomic<int> turns_ = 0;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> abandoned_ = false;
    std::atomic<bool> finished_ = false;
    bool begun_ = false;
    bool cutShort_ = false;
    TaskState* registryPrevious_ = nullptr;
    TaskState* registryNext_ = nullptr;
};

} // namespace sentrel
