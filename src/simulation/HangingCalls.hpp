#pragma once

#include "runtime/VirtualScheduler.hpp"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// Makes calls of a process hang forever, in virtual time. A call that hangs keeps its whole stack, as on a Mac: the
/// jobs run on threads of their own, one at a time, and a hanging one is left there while the clock goes on elsewhere.
/// Its executor stands still; all others work on. A job that blocks until after the clock's present run is left
/// likewise, and goes on when it can. Used by the thread that moves the clock, and by its jobs.
class HangingCalls final : private JobRunner {
public:
    HangingCalls(VirtualClock& clock, const VirtualScheduler& process);

    /// Ends all hanging calls.
    ~HangingCalls();
    HangingCalls(const HangingCalls&) = delete;

    /// Jobs that start from now on may hang.
    void prepare();

    /// Later jobs run on the clock's own thread again, which is faster; they can't hang. Calls that hang stay where
    /// they are.
    void rest();
    [[nodiscard]] bool isPrepared() const { return isPrepared_; }

    /// Whether a job that blocks was left until it can go on. No rest until then.
    [[nodiscard]] bool isAnyWaiting() const;

    /// Called when a job has begun to hang, on the thread that ran it. Install before the first job.
    void onHang(std::function<void()> hasHung) { hasHung_ = std::move(hasHung); }

    /// True in a job of the process: only such a call can hang.
    [[nodiscard]] bool isProcessCalling() const { return process_.isCurrent(); }

    /// Doesn't return while the process lives; then throws.
    [[noreturn]] void hang();

    /// The process dies: hanging calls throw, and their stacks unwind. Meanwhile `isEnding` is true and calls have no
    /// effect. Call before the process's objects are destroyed.
    void end();
    [[nodiscard]] bool isEnding() const override { return isEnding_; }

private:
    class Worker;
    bool run(Job& job) override;
    bool waitApart(Latch& latch) override;
    Resumed resume() override;
    void updateIdleness() { setIdle(!isPrepared_ && left_.empty()); }
    template <class Part> bool finish(std::unique_ptr<Worker> worker, Part part);

    VirtualClock& clock_;
    const VirtualScheduler& process_;
    std::function<void()> hasHung_;
    std::vector<std::unique_ptr<Worker>> idle_;
    std::vector<std::unique_ptr<Worker>> left_; ///< with a call that hangs, or a job that waits
    bool isPrepared_ = false;
    bool isEnding_ = false;
};

} // namespace sentrel::simulation
