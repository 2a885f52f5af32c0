#pragma once

#include "runtime/Scheduler.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Calls a function on an executor every interval, first after one interval, without drift; missed ticks (the machine
/// slept) are merged into one. The destructor stops it. Made and destroyed on its executor; its own tick may destroy
/// it.
class RepeatingTimer final : private Timer, private Job {
public:
    RepeatingTimer(Scheduler& scheduler, Executor& executor, Duration interval, std::function<void()> tick);
    ~RepeatingTimer();

private:
    void fire() override { executor_.post(*this); }
    void run() override;

    Scheduler& scheduler_;
    Executor& executor_;
    const Duration interval_;
    Instant deadline_;
    std::shared_ptr<const std::function<void()>> tick_;
};

} // namespace sentrel
