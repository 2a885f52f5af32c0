#pragma once

#include "runtime/Executor.hpp"
#include "runtime/TaskRegistry.hpp"
#include "runtime/Time.hpp"
#include "runtime/Timer.hpp"

#include <memory>
#include <string>

namespace sentrel {

/// The system's classes of urgency for queues and detached work.
enum class QualityOfService { utility, standard, userInitiated, userInteractive };

class Latch;

/// Executors and one clock, the base of coroutines, queues and timers. There is a real one (threads; on a Mac, dispatch
/// queues and the main run loop) and a virtual one (one thread, a clock that jumps). Code above cannot tell which it
/// has. The scheduler outlives every queue, timer and task handle made with it. Operations may be called on any thread.
class Scheduler {
public:
    Scheduler() = default;
    virtual ~Scheduler() = default;
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /// The continuous clock's reading.
    [[nodiscard]] virtual Instant now() const = 0;

    /// The executor of the main thread.
    [[nodiscard]] virtual Executor& mainExecutor() = 0;

    /// The executor of work that belongs to no queue; jobs may run side by side.
    [[nodiscard]] virtual Executor& globalExecutor(QualityOfService qualityOfService) = 0;

    /// A new executor that runs one job at a time. Its destruction waits for a running job and drops waiting ones.
    [[nodiscard]] virtual std::unique_ptr<Executor> makeSerialExecutor(const std::string& label,
                                                                       QualityOfService qualityOfService) = 0;

    /// Arms an idle timer. Timers of one deadline fire in the order in which they were armed.
    virtual void startTimer(Timer& timer, Instant deadline) = 0;

    /// Disarms a timer; false when it wasn't armed. When this returns, `fire` isn't running and won't run.
    virtual bool cancelTimer(Timer& timer) = 0;

    /// Blocks the calling executor, and only it, until the latch opens.
    virtual void blockUntil(Latch& latch) = 0;

    /// The tasks that have been started here and haven't finished.
    [[nodiscard]] TaskRegistry& tasks() { return tasks_; }

private:
    TaskRegistry tasks_;
};

} // namespace sentrel
