#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/VirtualScheduler.hpp"

namespace sentrel::test {

/// A machine on a virtual clock of its own, for tests of what needs nothing but a scheduler.
struct VirtualMachine {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    MainActor mainActor{scheduler};

    /// Time since the machine started.
    [[nodiscard]] Duration elapsed() const { return clock.now().time_since_epoch(); }
};

} // namespace sentrel::test
