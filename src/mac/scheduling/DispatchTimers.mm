#include "mac/scheduling/DispatchTimers.hpp"

#include <algorithm>
#include <cstdint>
#include <mutex>

#include <dispatch/dispatch.h>
#include <mach/mach_time.h>

namespace sentrel::mac {

namespace {

dispatch_source_t makeSource(dispatch_queue_t queue)
{
    return dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, DISPATCH_TIMER_STRICT, queue);
}

} // namespace

/// The heap of timers, and the sources that wake for the earliest. No public dispatch clock is continuous: the uptime
/// stops while the machine sleeps, and the wall clock can be set back. The first source to wake reads the continuous
/// clock and rearms both, so that neither sleep nor a changed date delays a timer.
class DispatchTimers::Waker {
public:
    Waker()
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

    ~Waker()
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

    bool cancel(Timer& timer)
    {
        const std::lock_guard guard{mutex_};
        return timers_.remove(timer);
    }

private:
    void fireDue()
    {
        const std::lock_guard guard{mutex_};
        while (timers_.earliest() && *timers_.earliest() <= now()) {
            timers_.fireEarliest();
        }
        arm();
    }

    void arm()
    {
        dispatch_time_t uptime = DISPATCH_TIME_FOREVER;
        dispatch_time_t wallClockTime = DISPATCH_TIME_FOREVER;
        if (const auto earliest = timers_.earliest()) {
            const std::int64_t left = std::max<std::int64_t>((*earliest - now()).count(), 0);
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

DispatchTimers::DispatchTimers() : waker_(std::make_unique<Waker>())
{
}

DispatchTimers::~DispatchTimers() = default;

Instant DispatchTimers::now()
{
    static const mach_timebase_info_data_t timebase = [] {
        mach_timebase_info_data_t info{};
        mach_timebase_info(&info);
        return info;
    }();
    const std::uint64_t nanoseconds = mach_continuous_time() * timebase.numer / timebase.denom;
    return Instant{Duration{static_cast<Duration::rep>(nanoseconds)}};
}

void DispatchTimers::start(Timer& timer, Instant deadline)
{
    waker_->start(timer, deadline);
}

bool DispatchTimers::cancel(Timer& timer)
{
    return waker_->cancel(timer);
}

} // namespace sentrel::mac
