#include "mac/Adapters.hpp"

#include "mac/scheduling/DispatchExecutor.hpp"
#include "runtime/Latch.hpp"
#include "runtime/Timer.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>

#include <dispatch/dispatch.h>
#include <mach/mach_time.h>

namespace sentrel::mac {

namespace {

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
    TimerHeap timers_;
    std::uint64_t armed_ = 0;
};

/// The real scheduler of a Mac: the main queue, the system's concurrent queues, one dispatch queue for each serial
/// executor, and the continuous clock.
class DispatchScheduler final : public Scheduler {
public:
    DispatchScheduler() = default;

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
        return DispatchExecutor::makeSerial(label, qualityOfService);
    }
    void startTimer(Timer& timer, Instant deadline) override { timers_.start(timer, deadline); }
    bool cancelTimer(Timer& timer) override { return timers_.cancel(timer); }
    void blockUntil(Latch& latch) override { latch.wait(); }

private:
    const std::unique_ptr<DispatchExecutor> main_ = DispatchExecutor::makeMain();
    const std::array<std::unique_ptr<DispatchExecutor>, 4> globals_{
        DispatchExecutor::makeGlobal(QualityOfService::utility),
        DispatchExecutor::makeGlobal(QualityOfService::standard),
        DispatchExecutor::makeGlobal(QualityOfService::userInitiated),
        DispatchExecutor::makeGlobal(QualityOfService::userInteractive)}; // by quality of service
    DispatchTimers timers_;
};

} // namespace

std::unique_ptr<Scheduler> makeScheduler()
{
    return std::make_unique<DispatchScheduler>();
}

} // namespace sentrel::mac
