#include "mac/Adapters.hpp"

#include "runtime/Latch.hpp"
#include "runtime/Timer.hpp"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include <dispatch/dispatch.h>
#include <mach/mach_time.h>
#include <os/log.h>
#include <pthread.h>

namespace sentrel::mac {

namespace {

/// In the order of `QualityOfService`.
constexpr std::array serviceClasses{QOS_CLASS_UTILITY, QOS_CLASS_DEFAULT, QOS_CLASS_USER_INITIATED,
                                    QOS_CLASS_USER_INTERACTIVE};

/// The waiting jobs, and the turns that were sent to the queue for them.
class DispatchJobs : public std::enable_shared_from_this<DispatchJobs> {
public:
    explicit DispatchJobs(dispatch_queue_t queue) : queue_(queue) {}

    void post(Job& job)
    {
        const std::shared_ptr<DispatchJobs> self = shared_from_this();
        // Sent under the lock: a job that runs before this returns may destroy the executor's owner.
        const std::lock_guard guard{mutex_};
        waiting_.append(job);
        if (!isStopped_) {
            dispatch_async(queue_, ^{
                self->takeTurn();
            });
        }
    }

    bool withdraw(Job& job)
    {
        const std::lock_guard guard{mutex_};
        if (!waiting_.remove(job)) {
            return false;
        }
        // One turn is now surplus. If it ran the next job, that job would overtake work that the system has queued
        // between the two.
        ++spareTurns_;
        return true;
    }

    void stop()
    {
        std::unique_lock guard{mutex_};
        isStopped_ = true;
        const int own = isCurrent() ? 1 : 0;
        finished_.wait(guard, [&] { return running_ == own; });
    }

    void dropWaiting()
    {
        while (Job* const job = take()) {
            job->drop();
        }
    }

    [[nodiscard]] bool isCurrent() const { return current == this; }
    [[nodiscard]] dispatch_queue_t queue() const { return queue_; }

private:
    void takeTurn()
    {
        Job* const job = beginTurn();
        if (job == nullptr) {
            return;
        }
        const DispatchJobs* const outer = std::exchange(current, this);
        @autoreleasepool {
            // An exception that a framework raised must not end the alarm's process.
            try {
                job->run();
            } catch (...) {
                os_log_error(OS_LOG_DEFAULT, "a job on %{public}s threw", dispatch_queue_get_label(queue_));
            }
        }
        current = outer;
        const std::lock_guard guard{mutex_};
        --running_;
        finished_.notify_all();
    }

    /// The job whose turn it is; null when there is none.
    Job* beginTurn()
    {
        const std::lock_guard guard{mutex_};
        if (isStopped_) {
            return nullptr;
        }
        if (spareTurns_ > 0) {
            --spareTurns_;
            return nullptr;
        }
        ++running_;
        return waiting_.popFirst();
    }

    Job* take()
    {
        const std::lock_guard guard{mutex_};
        return waiting_.popFirst();
    }

    static thread_local const DispatchJobs* current;
    const dispatch_queue_t queue_;
    std::mutex mutex_;
    std::condition_variable finished_;
    JobList waiting_;
    int spareTurns_ = 0;
    int running_ = 0;
    bool isStopped_ = false;
};

thread_local const DispatchJobs* DispatchJobs::current = nullptr;

/// An executor over a dispatch queue. It keeps its jobs in its own list, so that waiting ones can be withdrawn, and
/// queues one turn for each, so that jobs and the system's own work on the queue keep their order.
class DispatchExecutor final : public Executor {
public:
    enum class Kind { main, global, serial };
    DispatchExecutor(Kind kind, dispatch_queue_t queue) : kind_(kind), jobs_(std::make_shared<DispatchJobs>(queue))
    {
        if (kind_ == Kind::serial) {
            // The key is the address of the jobs, which no other queue uses.
            dispatch_queue_set_specific(queue, jobs_.get(), jobs_.get(), nullptr);
        }
    }
    ~DispatchExecutor() override
    {
        stop();
        jobs_->dropWaiting();
    }

    void post(Job& job) override { jobs_->post(job); }
    bool withdraw(Job& job) override { return jobs_->withdraw(job); }

    /// Does not wait for a job of this executor that calls it.
    void stop() override
    {
        jobs_->stop();
        if (kind_ == Kind::serial && !isCurrent()) {
            // The system's own calls on the queue (HID events) are no jobs; one may still be in progress.
            dispatch_sync(jobs_->queue(), ^{
                          });
        }
    }

    [[nodiscard]] bool isCurrent() const override
    {
        switch (kind_) {
        case Kind::main:
            return pthread_main_np() != 0;
        case Kind::serial:
            // True in the system's own calls on the queue, too.
            return dispatch_get_specific(jobs_.get()) == jobs_.get();
        case Kind::global:
            break;
        }
        return jobs_->isCurrent();
    }

    [[nodiscard]] void* nativeQueue() override { return (__bridge void*)jobs_->queue(); }

private:
    const Kind kind_;
    const std::shared_ptr<DispatchJobs> jobs_; // shared with turns still in the queue
};

/// The continuous clock: it runs on while the machine sleeps.
Instant continuousNow()
{
    static const mach_timebase_info_data_t timebase = [] {
        mach_timebase_info_data_t info{};
        mach_timebase_info(&info);
        return info;
    }();
    const std::uint64_t nanoseconds = mach_continuous_time() * timebase.numer / timebase.denom;
    return Instant{Duration{static_cast<Duration::rep>(nanoseconds)}};
}

dispatch_source_t makeSource(dispatch_queue_t queue)
{
    return dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, DISPATCH_TIMER_STRICT, queue);
}

/// The heap of armed timers, and the sources without leeway that wake for the earliest. No public dispatch clock is
/// continuous: the uptime stops while the machine sleeps, and the wall clock can be set back. The first source to wake
/// reads the continuous clock and rearms both, so that neither sleep nor a changed date delays a timer. Any thread.
class DispatchTimers {
public:
    DispatchTimers()
        : queue_(dispatch_queue_create(
              "pelma.Sentrel.timers",
              dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_USER_INTERACTIVE, 0))),
          uptimeSource_(makeSource(queue_)),
          wallClockSource_(makeSource(queue_))
    {
        arm();
        for (const dispatch_source_t& source : {uptimeSource_, wallClockSource_}) {
            dispatch_source_set_event_handler(source, ^{
                fireDue();
            });
            dispatch_activate(source);
        }
    }

    /// Drops all timers; none fires after this returns.
    ~DispatchTimers()
    {
        dispatch_source_cancel(uptimeSource_);
        dispatch_source_cancel(wallClockSource_);
        dispatch_sync(queue_, ^{
                      }); // waits for a running handler
        timers_.clear();
    }

    void start(Timer& timer, Instant deadline)
    {
        const std::lock_guard guard{mutex_};
        timers_.add(timer, deadline, armed_++);
        if (timers_.earliest() == deadline) {
            arm();
        }
    }

    /// False when the timer wasn't armed. When this returns, it isn't firing.
    bool cancel(Timer& timer)
    {
        const std::lock_guard guard{mutex_};
        return timers_.remove(timer);
    }

private:
    void fireDue()
    {
        const std::lock_guard guard{mutex_};
        while (timers_.earliest() && *timers_.earliest() <= continuousNow()) {
            timers_.fireEarliest();
        }
        arm();
    }

    void arm()
    {
        dispatch_time_t uptime = DISPATCH_TIME_FOREVER;
        dispatch_time_t wallClockTime = DISPATCH_TIME_FOREVER;
        if (const auto earliest = timers_.earliest()) {
            const std::int64_t left = std::max<std::int64_t>((*earliest - continuousNow()).count(), 0);
            uptime = dispatch_time(DISPATCH_TIME_NOW, left);
            wallClockTime = dispatch_walltime(nullptr, left);
        }
        dispatch_source_set_timer(uptimeSource_, uptime, DISPATCH_TIME_FOREVER, 0);
        dispatch_source_set_timer(wallClockSource_, wallClockTime, DISPATCH_TIME_FOREVER, 0);
    }

    const dispatch_queue_t queue_;
    const dispatch_source_t uptimeSource_;
    const dispatch_source_t wallClockSource_;
    std::mutex mutex_;
    TimerList timers_;
    std::uint64_t armed_ = 0;
};

/// The real scheduler of a Mac: the main queue, the system's concurrent queues, one dispatch queue for each serial
/// executor, and the continuous clock.
class DispatchScheduler final : public Scheduler {
public:
    DispatchScheduler()
    {
        for (const qos_class_t serviceClass : serviceClasses) {
            globals_.push_back(std::make_unique<DispatchExecutor>(DispatchExecutor::Kind::global,
                                                                  dispatch_get_global_queue(serviceClass, 0)));
        }
    }

    /// Stops its own executors and ends every waiting task. Main thread.
    ~DispatchScheduler() override
    {
        main_->stop();
        for (const auto& global : globals_) {
            global->stop();
        }
        tasks().endAll();
    }

    [[nodiscard]] Instant now() const override { return continuousNow(); }
    [[nodiscard]] Executor& mainExecutor() override { return *main_; }
    [[nodiscard]] Executor& globalExecutor(QualityOfService qualityOfService) override
    {
        return *globals_.at(static_cast<std::size_t>(qualityOfService));
    }
    [[nodiscard]] std::unique_ptr<Executor> makeSerialExecutor(const std::string& label,
                                                               QualityOfService qualityOfService) override
    {
        const qos_class_t serviceClass = serviceClasses.at(static_cast<std::size_t>(qualityOfService));
        const dispatch_queue_attr_t attributes =
            dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, serviceClass, 0);
        return std::make_unique<DispatchExecutor>(DispatchExecutor::Kind::serial,
                                                  dispatch_queue_create(label.c_str(), attributes));
    }
    void startTimer(Timer& timer, Instant deadline) override { timers_.start(timer, deadline); }
    bool cancelTimer(Timer& timer) override { return timers_.cancel(timer); }
    void blockUntil(Latch& latch) override { latch.wait(); }

private:
    /// The main run loop serves its queue in all common modes.
    const std::unique_ptr<DispatchExecutor> main_ =
        std::make_unique<DispatchExecutor>(DispatchExecutor::Kind::main, dispatch_get_main_queue());
    std::vector<std::unique_ptr<DispatchExecutor>> globals_; // by quality of service
    DispatchTimers timers_;
};

} // namespace

std::unique_ptr<Scheduler> makeScheduler()
{
    return std::make_unique<DispatchScheduler>();
}

} // namespace sentrel::mac
