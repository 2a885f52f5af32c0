#pragma once

#include "runtime/Async.hpp"
#include "runtime/Scheduler.hpp"
#include "runtime/Wait.hpp"

#include <utility>
#include <vector>

namespace sentrel {

/// The wait for another task's end. Cancelling the waiting task ends the wait, not the task waited for.
class TaskEndWait : public Wait, private TaskWaiter {
protected:
    explicit TaskEndWait(TaskState& awaited) : awaited_(awaited) {}
    ~TaskEndWait() = default;

    [[nodiscard]] TaskState& awaited() const { return awaited_; }

    bool arm() final
    {
        if (awaited_.addWaiter(*this)) {
            return true;
        }
        completeAtOnce();
        return false;
    }
    void disarm() final { awaited_.removeWaiter(*this); }

private:
    void onFinish() final { claim(); }
    TaskState& awaited_;
};

/// A handle to a task that runs on its own. Handles are shared: copying is cheap, and dropping one neither cancels nor
/// ends the task. Awaiting gives the task's value, or throws what the task threw. A handle must not outlive its
/// scheduler. Any thread.
template <class T> class Task {
public:
    Task() = default;
    Task(const Task& other) : handle_(other.handle_)
    {
        if (handle_) {
            state().retain();
        }
    }
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Task& operator=(Task other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Task()
    {
        if (handle_) {
            state().release();
        }
    }

    /// Starts the coroutine on `executor` with its first turn on `front`; never inline.
    static Task start(Scheduler& scheduler, Executor& executor, Executor& front, QueueHold* hold, Async<T> work)
    {
        Task task;
        task.handle_ = std::exchange(work.handle_, nullptr);
        AsyncPromiseBase& promise = task.handle_.promise();
        promise.task_ = &promise.ownTask_.emplace();
        promise.task_->start(scheduler, executor, front, hold, task.handle_);
        return task;
    }

    /// True for a handle that holds a task.
    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(handle_); }

    void cancel() const { state().cancel(); }
    void abandon() const { state().abandon(); }
    [[nodiscard]] bool isCancelled() const { return state().isCancelled(); }
    [[nodiscard]] bool isFinished() const { return state().isFinished(); }

    class ValueWait final : public TaskEndWait {
    public:
        explicit ValueWait(Task task) : TaskEndWait(task.state()), task_(std::move(task)) {}
        ~ValueWait() { leave(); }

        T await_resume()
        {
            settle();
            if (awaited().wasCutShort()) {
                throw CancellationError{};
            }
            return task_.handle_.promise().value();
        }

    private:
        Task task_;
    };

    ValueWait operator co_await() const { return ValueWait{*this}; }

private:
    [[nodiscard]] TaskState& state() const { return handle_.promise().task(); }
    typename Async<T>::Handle handle_;
};

/// Tasks that die with their owner: the bag's destructor ends each of them where it waits, so that no coroutine
/// outlives the owner. A member of the owner, declared last. Used on the owner's executor.
class TaskBag {
public:
    TaskBag() = default;
    TaskBag(const TaskBag&) = delete;
    TaskBag& operator=(const TaskBag&) = delete;
    ~TaskBag()
    {
        for (const Task<void>& task : tasks_) {
            task.abandon();
        }
    }

    void add(Task<void> task)
    {
        std::erase_if(tasks_, [](const Task<void>& old) { return old.isFinished(); });
        tasks_.push_back(std::move(task));
    }

private:
    std::vector<Task<void>> tasks_;
};

} // namespace sentrel
