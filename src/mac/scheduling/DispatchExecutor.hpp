#pragma once

#include "runtime/Scheduler.hpp"

#include <memory>
#include <string>

namespace sentrel::mac {

/// An executor over a dispatch queue. It keeps its jobs in its own list, so that waiting ones can be withdrawn, and
/// queues one turn for each, so that jobs and the system's own work on the queue keep their order.
class DispatchExecutor final : public Executor {
public:
    /// The main queue, which the main run loop serves in all common modes.
    static std::unique_ptr<DispatchExecutor> makeMain();

    /// A concurrent queue of the system.
    static std::unique_ptr<DispatchExecutor> makeGlobal(QualityOfService qualityOfService);

    /// A new serial queue.
    static std::unique_ptr<DispatchExecutor> makeSerial(const std::string& label, QualityOfService qualityOfService);

    ~DispatchExecutor() override;

    void post(Job& job) override;
    bool withdraw(Job& job) override;

    /// Does not wait for a job of this executor that calls it.
    void stop() override;
    [[nodiscard]] bool isCurrent() const override;
    [[nodiscard]] void* nativeQueue() override;

private:
    enum class Kind { main, global, serial };
    class Jobs;
    DispatchExecutor(Kind kind, std::shared_ptr<Jobs> jobs);

    const Kind kind_;
    const std::shared_ptr<Jobs> jobs_; // shared with turns still in the queue
};

} // namespace sentrel::mac
