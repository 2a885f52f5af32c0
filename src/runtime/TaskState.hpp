#pragma once

#include "runtime/Executor.hpp"

#include <atomic>
#include <coroutine>
#include <mutex>

namespace sentrel {

class Scheduler;
class TaskRegistry;
class TaskState;

/// What a suspended wait offers to its task, so that cancellation can reach it.
class CancelHook {
public:
    CancelHook() = default;
    CancelHook(const CancelHook&) = delete;
    CancelHook& operator=(const CancelHook&) = delete;

    /// The task was cancelled. Called under the task's lock: it only claims the wait and posts the task.
    virtual void onCancel() = 0;

    /// The task will never resume: leave every list and timer. Called without the task's lock.
    virtual void detach() = 0;

protected:
    ~CancelHook() = default;
};

/// Told when a task that occupies a serial queue begins and finishes. Both calls come on the queue's executor.
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

    /// The awaited task has finished. Called under that task's lock: it only claims the wait and posts.
    virtual void onFinish() = 0;

protected:
    ~TaskWaiter() = default;

private:
    friend class TaskState;
    TaskWaiter* next_ = nullptr;
};

/// The part of a task that has nothing to do with its value: where it runs, how it is cancelled, who waits for it and
/// how long its frame lives. It is a member of the coroutine's promise, so that a task is one allocation; it is also
/// the job by which the task resumes, so that a hop allocates nothing. Operations may be called on any thread.
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

    /// Ends the task where it waits: none of its code runs again. For owners that die with work under way. Called on
    /// the task's executor it takes effect at once (but for the task that calls, which goes on to its next wait).
    void abandon();

    /// True when the task was ended before it came to its own end.
    [[nodiscard]] bool wasCutShort() const { return cutShort_; }

    /// The root coroutine has come to its end (or never will). Called by its promise, last of all.
    void finish();

    /// Links a waiter in; false when the task has finished already.
    bool addWaiter(TaskWaiter& waiter);
    void removeWaiter(TaskWaiter& waiter);

    /// Under the task's lock: remembers where to resume and whom to tell of cancellation, then arms the wait. False
    /// when the wait is over before it began: `isCancelled` tells why.
    template <class Arm> bool beginWait(std::coroutine_handle<> resumePoint, CancelHook& hook, Arm arm)
    {
        const std::lock_guard guard{lock_};
        resumePoint_ = resumePoint;
        if (abandoned_.load(std::memory_order_acquire)) {
            resumeSoon(); // to be ended there
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

    /// Posts the next turn. Whoever calls this has claimed the wait.
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
