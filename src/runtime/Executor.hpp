#pragma once

#include "runtime/Job.hpp"

#include <memory>
#include <utility>

namespace sentrel {

/// Something that runs jobs, in the order in which they were posted. Every operation may be called on any thread.
class Executor {
public:
    virtual ~Executor() = default;

    /// Queues the job; it never runs inside this call. The job must stay alive until it has run or was withdrawn.
    virtual void post(Job& job) = 0;

    /// Takes a waiting job back; false when it isn't waiting here (any more).
    virtual bool withdraw(Job& job) = 0;

    /// Waits for a running job and for the system's own work on the native queue; no job runs afterwards. Jobs posted
    /// later are dropped with the executor. Further calls have no effect.
    virtual void stop() = 0;

    /// True when the calling code runs on this executor.
    [[nodiscard]] virtual bool isCurrent() const = 0;

    /// The operating system's own queue behind this executor (a `dispatch_queue_t` on macOS), or null.
    [[nodiscard]] virtual void* nativeQueue() { return nullptr; }
};

/// Runs a plain function on an executor's next turn; one allocation, freed when the function has run.
template <class Function> void post(Executor& executor, Function function)
{
    struct FunctionJob final : Job {
        explicit FunctionJob(Function&& body) : work(std::move(body)) {}
        void run() override
        {
            const std::unique_ptr<FunctionJob> self{this};
            work();
        }
        void drop() override { delete this; }
        Function work;
    };
    executor.post(*new FunctionJob{std::move(function)});
}

} // namespace sentrel
