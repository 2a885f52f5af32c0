#pragma once

#include "runtime/VirtualScheduler.hpp"

#include <memory>
#include <vector>

namespace sentrel::simulation {

/// Lets calls of a process never come back, in virtual time. A call that hangs keeps its whole stack, as on a Mac: the
/// jobs run on threads of their own, one at a time, and a hanging one is left there while the clock goes on elsewhere.
/// The executor that ran it stands still; all others work on. Used by whoever moves the clock, and by its jobs.
class HangingCalls final : private JobRunner {
public:
    HangingCalls(VirtualClock& clock, const VirtualScheduler& process);

    /// Ends what hangs.
    ~HangingCalls();
    HangingCalls(const HangingCalls&) = delete;

    /// Jobs that start from now on may hang.
    void prepare();

    /// True in a job of the process: only such a call can hang.
    [[nodiscard]] bool isProcessCalling() const { return process_.isCurrent(); }

    /// Never comes back while the process lives.
    [[noreturn]] void hang();

    /// The process dies: what hangs comes back with an exception, and its stack is taken down. Meanwhile `isEnding`
    /// holds, in which no call has an effect any more. Before the process's objects go.
    void end();
    [[nodiscard]] bool isEnding() const { return isEnding_; }

private:
    class Worker;
    bool run(Job& job) override;

    VirtualClock& clock_;
    const VirtualScheduler& process_;
    std::vector<std::unique_ptr<Worker>> idle_;
    std::vector<std::unique_ptr<Worker>> hung_;
    bool isEnding_ = false;
};

} // namespace sentrel::simulation
