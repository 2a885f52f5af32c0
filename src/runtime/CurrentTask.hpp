#pragma once

#include "runtime/TaskState.hpp"

#include <coroutine>

namespace sentrel {

/// `const bool isCancelled = co_await isTaskCancelled();`: whether the running task was cancelled. Never suspends.
class TaskCancelledQuery {
public:
    bool await_ready() const noexcept { return false; }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> caller) noexcept
    {
        isCancelled_ = caller.promise().task().isCancelled();
        return false;
    }
    bool await_resume() const noexcept { return isCancelled_; }

private:
    bool isCancelled_ = false;
};

inline TaskCancelledQuery isTaskCancelled()
{
    return {};
}

} // namespace sentrel
