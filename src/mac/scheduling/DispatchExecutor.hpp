#pragma once

#include "runtime/Scheduler.hpp"

#include <memory>
#include <string>

namespace sentrel::mac {

/// An executor over a dispatch queue. It keeps its jobs in its own list, so that a waiting one can be withdrawn, and
/// sends one turn to the queue for each; what else the system puts on the queue keeps its place among them.
class DispatchExecutor final : public Executor {
public:
    /// The main queue, which the main run loop serves in all common modes.
    static std::unique_ptr<DispatchExecutor> makeMain();

    /// One of the system's concurrent queues.
    static std::unique_ptr<DispatchExecutor> makeGlobal(QualityOfService qualityOfService);

    /// A new serial queue.
    static std::unique_ptr<DispatchExecutor> makeSerial(const std::string& label, QualityOfService qualityOfService);

    ~DispatchExecutor() override;

    void post(Job& job) override;
    bool withdraw(Job& job) override;

    /// When called from a job of this executor, that job is not waited for.
    void stop() override;
    [[nodiscard]] bool isCurrent() const override;
    [[nodiscard]] void* nativeQueue() override;

private:
    enum class Kind { main, global, serial };
    class Jobs;
    DispatchExecutor(Kind kind, std::shared_ptr<Jobs> jobs);

    const Kind kind_;
    const std::shared_ptr<Jobs> jobs_; // turns that are still in the queue share it
};

} // namespace sentrel::mac
