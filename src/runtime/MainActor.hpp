#pragma once

#include "foundation/Quietly.hpp"
#include "runtime/Task.hpp"

#include <utility>

namespace sentrel {

/// The main thread, where every service lives. A cheap value; any thread may use it.
class MainActor {
public:
    explicit MainActor(Scheduler& scheduler) : scheduler_(&scheduler) {}

    /// Starts a task on the main thread's next turn, never inline.
    template <class T> Task<T> spawn(Async<T> work) const
    {
        Executor& executor = scheduler_->mainExecutor();
        return Task<T>::start(*scheduler_, executor, executor, nullptr, std::move(work));
    }

    /// Calls a function on the main thread's next turn, never inline, as a task without a handle would: its exceptions
    /// are dropped, and it can't wait. One allocation, and a fraction of a task's cost.
    template <class Function> void post(Function function) const
    {
        sentrel::post(scheduler_->mainExecutor(),
                      [function = std::move(function)]() mutable { quietly([&function] { function(); }); });
    }

    [[nodiscard]] bool isCurrent() const { return scheduler_->mainExecutor().isCurrent(); }
    [[nodiscard]] Scheduler& scheduler() const { return *scheduler_; }

private:
    Scheduler* scheduler_;
};

} // namespace sentrel
