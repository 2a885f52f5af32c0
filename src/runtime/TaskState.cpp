#include "runtime/TaskState.hpp"

#include "runtime/Scheduler.hpp"

#include <utility>

namespace sentrel {

void TaskState::start(Scheduler& scheduler, Executor& executor, Executor& front, QueueHold* hold,
                      std::coroutine_handle<> root)
{
    scheduler_ = &scheduler;
    executor_ = &executor;
    hold_ = hold;
    root_ = root;
    resumePoint_ = root;
    references_.store(2, std::memory_order_relaxed);
    scheduler.tasks().add(*this);
    front.post(*this);
}

void TaskState::release()
{
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        root_.destroy();
    }
}

void TaskState::cancel()
{
    const std::lock_guard guard{lock_};
    if (cancelled_.exchange(true, std::memory_order_acq_rel) || hook_ == nullptr) {
        return;
    }
    hook_->onCancel();
}

void TaskState::abandon()
{
    abandoned_.store(true, std::memory_order_release);
    if (isFinished()) {
        return;
    }
    // On its own executor the task ends before this returns, so that the frame is gone when its owner's members go. A
    // task that abandons itself ends after its current turn.
    if (executor_->isCurrent()) {
        run();
    } else {
        cancel();
    }
}

void TaskState::finish()
{
    {
        const std::lock_guard guard{lock_};
        finished_.store(true, std::memory_order_release);
        while (waiters_ != nullptr) {
            TaskWaiter& waiter = *waiters_;
            waiters_ = waiter.next_;
            waiter.onFinish();
        }
    }
    scheduler_->tasks().remove(*this);
    QueueHold* const hold = begun_ ? hold_ : nullptr;
    release();
    // Last, so that the next job of the queue starts when this one's frame has gone.
    if (hold != nullptr) {
        hold->taskFinished();
    }
}

bool TaskState::addWaiter(TaskWaiter& waiter)
{
    const std::lock_guard guard{lock_};
    if (isFinished()) {
        return false;
    }
    TaskWaiter** last = &waiters_;
    while (*last != nullptr) {
        last = &(*last)->next_;
    }
    waiter.next_ = nullptr;
    *last = &waiter;
    return true;
}

void TaskState::removeWaiter(TaskWaiter& waiter)
{
    const std::lock_guard guard{lock_};
    for (TaskWaiter** link = &waiters_; *link != nullptr; link = &(*link)->next_) {
        if (*link == &waiter) {
            *link = waiter.next_;
            return;
        }
    }
}

void TaskState::endWait()
{
    const std::lock_guard guard{lock_};
    hook_ = nullptr;
}

void TaskState::run()
{
    // On a concurrent executor the next turn may come while this one is still unwinding: the first thread takes both,
    // so that a task's turns never overlap.
    retain();
    if (turns_.fetch_add(1, std::memory_order_acq_rel) == 0) {
        do {
            takeTurn();
        } while (turns_.fetch_sub(1, std::memory_order_acq_rel) != 1);
    }
    release();
}

void TaskState::takeTurn()
{
    if (isFinished()) {
        return;
    }
    if (abandoned_.load(std::memory_order_acquire)) {
        endUnrun();
        return;
    }
    if (!begun_) {
        begun_ = true;
        if (hold_ != nullptr) {
            hold_->taskBegan(*this);
        }
    }
    resumePoint_.resume();
}

void TaskState::drop()
{
    if (!isFinished()) {
        hold_ = nullptr; // its queue is being destroyed too
        endUnrun();
    }
}

void TaskState::endUnrun()
{
    CancelHook* hook = nullptr;
    {
        const std::lock_guard guard{lock_};
        std::swap(hook, hook_);
        cancelled_.store(true, std::memory_order_release);
        cutShort_ = true;
    }
    if (hook != nullptr) {
        hook->detach();
    }
    executor_->withdraw(*this); // its event may have posted it meanwhile
    finish();
}

} // namespace sentrel
