#include "runtime/VirtualScheduler.hpp"

#include "runtime/Latch.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace sentrel {

/// One executor of a virtual scheduler: a list of jobs that the clock takes from.
class VirtualExecutor final : public Executor {
public:
    enum class Kind { main, serial, concurrent };

    VirtualExecutor(VirtualClock& clock, const VirtualScheduler& scheduler, Kind kind)
        : clock_(clock), scheduler_(scheduler), kind_(kind)
    {
    }
    ~VirtualExecutor() override { dropJobs(); }

    void post(Job& job) override
    {
        job.order_ = clock_.posted_++;
        if (jobs_.empty()) {
            clock_.busy_.push_back(this);
        }
        jobs_.append(job);
    }
    bool withdraw(Job& job) override
    {
        const bool isWithdrawn = jobs_.remove(job);
        if (isWithdrawn) {
            noteTaken();
        }
        return isWithdrawn;
    }
    void stop() override { isStopped_ = true; }
    [[nodiscard]] bool isCurrent() const override
    {
        return clock_.current_ == this || (kind_ == Kind::main && clock_.current_ == nullptr);
    }

    void dropJobs()
    {
        while (!jobs_.empty()) {
            take().drop();
        }
    }

    /// The job that may run next, or null.
    [[nodiscard]] const Job* runnable() const
    {
        return isBlocked_ || isStopped_ || scheduler_.isAsleep() ? nullptr : jobs_.first();
    }
    [[nodiscard]] Job& take()
    {
        Job& job = *jobs_.popFirst();
        noteTaken();
        return job;
    }

    [[nodiscard]] bool isOf(const VirtualScheduler& scheduler) const { return &scheduler_ == &scheduler; }

    /// A blocked thread blocks its serial or main executor; a concurrent one has other threads.
    void setBlocked(bool blocked) { isBlocked_ = blocked && kind_ != Kind::concurrent; }

private:
    void noteTaken()
    {
        if (!jobs_.empty()) {
            return;
        }
        if (clock_.busy_.back() == this) {
            clock_.busy_.pop_back();
        } else {
            std::erase(clock_.busy_, this);
        }
    }

    VirtualClock& clock_;
    const VirtualScheduler& scheduler_;
    const Kind kind_;
    bool isBlocked_ = false;
    bool isStopped_ = false;
    JobList jobs_;
};

/// Sets the current executor for a scope; restores the outer one also when a job throws.
class VirtualClock::CurrentScope {
public:
    CurrentScope(VirtualClock& clock, VirtualExecutor* current)
        : clock_(clock), outer_(std::exchange(clock.current_, current))
    {
    }
    ~CurrentScope() { clock_.current_ = outer_; }
    CurrentScope(const CurrentScope&) = delete;
    CurrentScope& operator=(const CurrentScope&) = delete;

private:
    VirtualClock& clock_;
    VirtualExecutor* outer_;
};

/// Sets the limit of a run for a scope, unless an outer run has set one.
class VirtualClock::LimitScope {
public:
    LimitScope(VirtualClock& clock, Instant limit) : clock_(clock), isOutermost_(!clock.limit_)
    {
        if (isOutermost_) {
            clock.limit_ = limit;
        }
    }
    ~LimitScope()
    {
        if (isOutermost_) {
            clock_.limit_.reset();
        }
    }
    LimitScope(const LimitScope&) = delete;
    LimitScope& operator=(const LimitScope&) = delete;

private:
    VirtualClock& clock_;
    const bool isOutermost_;
};

/// Continues a job that was left while it blocked; false if there is none that can go on.
bool VirtualClock::resumeJob()
{
    const CurrentScope scope{*this, current_};
    const auto resumed = runner_->resume();
    if (resumed == JobRunner::Resumed::untilItBlocked && current_ != nullptr) {
        current_->setBlocked(true); // the executor of the job, which it set itself
    }
    return resumed != JobRunner::Resumed::none;
}

/// The executor of the oldest job that may run; null when there is none.
VirtualExecutor* VirtualClock::nextExecutor() const
{
    VirtualExecutor* next = nullptr;
    std::uint64_t oldest = std::numeric_limits<std::uint64_t>::max();
    for (VirtualExecutor* executor : busy_) {
        const Job* const job = executor->runnable();
        if (job != nullptr && job->order_ < oldest) {
            oldest = job->order_;
            next = executor;
        }
    }
    return next;
}

bool VirtualClock::runNextJob()
{
    JobRunner* const runner = runner_ != nullptr && !runner_->isIdle() ? runner_ : nullptr;
    if (runner != nullptr && resumeJob()) {
        return true;
    }
    VirtualExecutor* const next = nextExecutor();
    if (next == nullptr) {
        return false;
    }
    constexpr std::uint64_t mostTurns = 50'000'000;
    if (++turnsAtThisInstant_ > mostTurns) {
        throw std::runtime_error{"the virtual clock stands still: jobs keep posting jobs"};
    }
    ++turns_;
    const CurrentScope scope{*this, next};
    Job& job = next->take();
    if (runner == nullptr) {
        job.run();
    } else if (!runner->run(job)) {
        next->setBlocked(true);
    }
    return true;
}

bool VirtualClock::fireNextTimer(Instant limit)
{
    if (timers_.size() == 0 || timers_.earliestDeadline() > limit) {
        return false;
    }
    if (const Instant earliest = timers_.earliestDeadline(); earliest > now_) {
        now_ = earliest;
        turnsAtThisInstant_ = 0;
    }
    timers_.fireEarliest();
    return true;
}

void VirtualClock::runJobs()
{
    while (runNextJob()) {
    }
}

void VirtualClock::runReady()
{
    const LimitScope scope{*this, now_};
    runJobs();
}

void VirtualClock::runUntil(Instant deadline)
{
    const LimitScope scope{*this, deadline};
    do {
        runJobs();
    } while (fireNextTimer(deadline));
    now_ = std::max(now_, deadline);
    turnsAtThisInstant_ = 0;
}

void VirtualClock::runUntilIdle()
{
    do {
        runJobs();
    } while (fireNextTimer(Instant::max()));
}

void VirtualClock::blockUntil(Latch& latch)
{
    VirtualExecutor* const blocked = current_;
    struct Unblock {
        VirtualExecutor* executor;
        ~Unblock()
        {
            if (executor != nullptr) {
                executor->setBlocked(false);
            }
        }
    } const unblock{blocked};
    if (blocked != nullptr) {
        blocked->setBlocked(true);
    }
    const auto isEnding = [this] { return runner_ != nullptr && runner_->isEnding(); };
    while (!latch.isOpen() && !isEnding()) {
        if (runNextJob()) {
            continue;
        }
        // Nothing that is due in this run opens the latch.
        const bool isBeyond = limit_ && (!timers_.earliest() || *timers_.earliest() > *limit_);
        if (isBeyond && runner_ != nullptr && runner_->waitApart(latch)) {
            if (!isEnding()) { // then no `resumeJob` restores the current executor
                current_ = blocked;
            }
        } else if (!fireNextTimer(Instant::max())) {
            throw std::logic_error{"deadlock: blocked on a latch that nothing can open"};
        }
    }
}

VirtualScheduler::VirtualScheduler(VirtualClock& clock)
    : clock_(clock),
      main_(std::make_unique<VirtualExecutor>(clock, *this, VirtualExecutor::Kind::main)),
      global_(std::make_unique<VirtualExecutor>(clock, *this, VirtualExecutor::Kind::concurrent))
{
}

VirtualScheduler::~VirtualScheduler()
{
    main_->stop();
    global_->stop();
    tasks().endAll();
}

bool VirtualScheduler::isCurrent() const
{
    return clock_.current_ != nullptr && clock_.current_->isOf(*this);
}

void VirtualScheduler::endProcess()
{
    main_->setBlocked(false);
    tasks().endAll();
    main_->dropJobs();
    global_->dropJobs();
}

Executor& VirtualScheduler::mainExecutor()
{
    return *main_;
}

Executor& VirtualScheduler::globalExecutor(QualityOfService /*qualityOfService*/)
{
    return *global_;
}

std::unique_ptr<Executor> VirtualScheduler::makeSerialExecutor(const std::string& /*label*/,
                                                               QualityOfService /*qualityOfService*/)
{
    return std::make_unique<VirtualExecutor>(clock_, *this, VirtualExecutor::Kind::serial);
}

void VirtualScheduler::startTimer(Timer& timer, Instant deadline)
{
    clock_.timers_.add(timer, deadline, clock_.armed_++);
}

} // namespace sentrel
