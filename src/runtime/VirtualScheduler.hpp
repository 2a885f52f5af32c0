#pragma once

#include "runtime/Scheduler.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace sentrel {

class VirtualExecutor;

/// Customises how a virtual clock runs its jobs.
class JobRunner {
public:
    /// Runs the job. False when the job never ends: a serial or main executor then stands still, and the clock goes on.
    virtual bool run(Job& job) = 0;

    /// Called by a job that blocks: leaves it until the latch is open or its process ends, while `run` returns false.
    /// False at once if the calling job can't be left.
    virtual bool waitApart(Latch& latch) = 0;

    /// Whether a process ends, and nothing that its jobs wait for comes any more.
    [[nodiscard]] virtual bool isEnding() const = 0;

    /// How `resume` ended.
    enum class Resumed { none, untilItsEnd, untilItBlocked };

    /// Continues a job that was left, if there is one whose latch is open.
    virtual Resumed resume() = 0;

    /// Whether `run` would only run the job, and `resume` has nothing to continue: the clock then calls neither.
    [[nodiscard]] bool isIdle() const { return isIdle_; }

protected:
    ~JobRunner() = default;

    /// Call after each change. Not virtual above, because the clock asks for each job.
    void setIdle(bool isIdle) { isIdle_ = isIdle; }

private:
    bool isIdle_ = false;
};

/// One virtual clock and everything that runs by it: one thread, a fixed order, and a clock that jumps to the next
/// deadline when nothing is runnable. Several schedulers (two machines; a machine and its hardware) may share it.
class VirtualClock {
public:
    VirtualClock() = default;
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    [[nodiscard]] Instant now() const { return now_; }

    /// Runs every runnable job without moving the clock.
    void runReady();

    /// Runs everything that is due up to and including `deadline`, and leaves the clock there. Throws
    /// `std::runtime_error` when jobs keep posting jobs and the clock would never move again.
    void runUntil(Instant deadline);

    /// `runUntil` a span from now.
    void advance(Duration span) { runUntil(now_ + span); }

    /// Runs until nothing is runnable and no timer is armed; repeating timers must have been stopped.
    void runUntilIdle();

    /// When the next timer is due; none when none is armed.
    [[nodiscard]] std::optional<Instant> nextDeadline() const { return timers_.earliest(); }

    /// How many timers are armed.
    [[nodiscard]] std::size_t armedTimers() const { return timers_.size(); }

    /// Lets the runner run all later jobs; null lets the clock run them itself. The runner outlives its use.
    void setJobRunner(JobRunner* runner) { runner_ = runner; }

    /// How many jobs have run so far.
    [[nodiscard]] std::uint64_t turns() const { return turns_; }

private:
    friend class VirtualExecutor;
    friend class VirtualScheduler;
    class CurrentScope;
    class LimitScope;

    bool resumeJob();
    bool runNextJob();
    void runJobs();
    [[nodiscard]] VirtualExecutor* nextExecutor() const;
    bool fireNextTimer(Instant limit);
    void blockUntil(Latch& latch);

    Instant now_{};
    std::optional<Instant> limit_; // of the outermost run, which jobs that block try not to pass
    std::uint64_t posted_ = 0;
    std::uint64_t armed_ = 0;
    std::uint64_t turns_ = 0;
    std::uint64_t turnsAtThisInstant_ = 0;
    TimerList timers_;
    std::vector<VirtualExecutor*> busy_; // those in which jobs wait
    VirtualExecutor* current_ = nullptr;
    JobRunner* runner_ = nullptr;
};

/// The scheduler of one machine (or of its hardware) on a virtual clock. Everything happens on the thread that moves
/// the clock; code outside any job counts as running on the main executor.
class VirtualScheduler final : public Scheduler {
public:
    explicit VirtualScheduler(VirtualClock& clock);

    /// Ends every task where it waits.
    ~VirtualScheduler() override;

    [[nodiscard]] Instant now() const override { return clock_.now(); }
    [[nodiscard]] Executor& mainExecutor() override;
    [[nodiscard]] Executor& globalExecutor(QualityOfService qualityOfService) override;
    [[nodiscard]] std::unique_ptr<Executor> makeSerialExecutor(const std::string& label,
                                                               QualityOfService qualityOfService) override;
    void startTimer(Timer& timer, Instant deadline) override;
    bool cancelTimer(Timer& timer) override { return clock_.timers_.remove(timer); }
    void blockUntil(Latch& latch) override { clock_.blockUntil(latch); }

    /// While the machine sleeps, none of its jobs run; time goes on. Jobs that fell due run on waking.
    void setAsleep(bool asleep) { isAsleep_ = asleep; }
    [[nodiscard]] bool isAsleep() const { return isAsleep_; }

    /// True when the calling code runs in a job of this scheduler.
    [[nodiscard]] bool isCurrent() const;

    /// Ends the process that runs here, after its objects are destroyed: tasks end where they wait, jobs are dropped.
    void endProcess();

private:
    VirtualClock& clock_;
    bool isAsleep_ = false;
    std::unique_ptr<VirtualExecutor> main_;
    std::unique_ptr<VirtualExecutor> global_;
};

} // namespace sentrel
