#pragma once

#include "runtime/Scheduler.hpp"

#include <memory>

namespace sentrel {

/// The real scheduler on plain threads: one for each serial executor, a few for detached work and one for timers. The
/// main thread is the one that makes the scheduler and calls `runMain`.
class ThreadScheduler final : public Scheduler {
public:
    ThreadScheduler();

    /// Stops all threads and ends every task where it waits. Called on the main thread, outside `runMain`.
    ~ThreadScheduler() override;

    /// Runs the main executor's jobs on the calling thread until `stopMain`.
    void runMain();

    /// Makes `runMain` return after the job that is running. Any thread.
    void stopMain();

    [[nodiscard]] Instant now() const override;
    [[nodiscard]] Executor& mainExecutor() override;
    [[nodiscard]] Executor& globalExecutor(QualityOfService qualityOfService) override;
    [[nodiscard]] std::unique_ptr<Executor> makeSerialExecutor(const std::string& label,
                                                               QualityOfService qualityOfService) override;
    void startTimer(Timer& timer, Instant deadline) override;
    bool cancelTimer(Timer& timer) override;
    void blockUntil(Latch& latch) override;

private:
    class ThreadExecutor;
    class TimerThread;
    std::unique_ptr<ThreadExecutor> main_;
    std::unique_ptr<ThreadExecutor> global_;
    std::unique_ptr<TimerThread> timers_;
};

} // namespace sentrel
