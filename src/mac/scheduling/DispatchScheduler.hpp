#pragma once

#include "mac/scheduling/DispatchExecutor.hpp"
#include "mac/scheduling/DispatchTimers.hpp"
#include "runtime/Scheduler.hpp"

#include <array>
#include <memory>

namespace sentrel::mac {

/// The real scheduler of a Mac: the main queue, the system's concurrent queues, one dispatch queue for each serial
/// executor, and the continuous clock.
class DispatchScheduler final : public Scheduler {
public:
    DispatchScheduler();

    /// Stops its own executors and ends every waiting task. Main thread.
    ~DispatchScheduler() override;

    [[nodiscard]] Instant now() const override { return DispatchTimers::now(); }
    [[nodiscard]] Executor& mainExecutor() override { return *main_; }
    [[nodiscard]] Executor& globalExecutor(QualityOfService qualityOfService) override;
    [[nodiscard]] std::unique_ptr<Executor> makeSerialExecutor(const std::string& label,
                                                               QualityOfService qualityOfService) override;
    void startTimer(Timer& timer, Instant deadline) override { timers_->start(timer, deadline); }
    bool cancelTimer(Timer& timer) override { return timers_->cancel(timer); }
    void blockUntil(Latch& latch) override;

private:
    std::unique_ptr<DispatchExecutor> main_;
    std::array<std::unique_ptr<DispatchExecutor>, 4> globals_; // by quality of service
    std::unique_ptr<DispatchTimers> timers_;
};

} // namespace sentrel::mac
