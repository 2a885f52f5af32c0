#include "sensors/LidMonitor.hpp"

#include "foundation/Fatal.hpp"
#include "foundation/Quietly.hpp"
#include "ports/SystemConstants.hpp"
#include "ports/WindowConstants.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/WeakCall.hpp"

#include <cstdint>
#include <limits>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration lidPollingInterval = 2s;

} // namespace

LidMonitor::LidMonitor(MainActor mainActor, ports::DeviceRegistry& registry, ports::WorkspaceNotifications& workspace)
    : mainActor_(mainActor), registry_(registry), workspace_(workspace)
{
}

bool LidMonitor::isLidClosed() const
{
    const auto state = registry_.number(ports::rootDomainClass, ports::clamshellStateKey);
    if (!state) {
        return false;
    }
    if (*state < 0 || *state > std::numeric_limits<std::uint32_t>::max()) {
        fatalError("the clamshell state is not an unsigned 32-bit number");
    }
    return *state != 0;
}

void LidMonitor::start()
{
    assertOnMainActor(mainActor_);
    stop();
    const auto check = weakCall(mainActor_, anchor_.weak(), &LidMonitor::check);
    // First, so that it watches even if a call below raises.
    Scheduler& scheduler = mainActor_.scheduler();
    timer_ = std::make_unique<RepeatingTimer>(scheduler, scheduler.mainExecutor(), lidPollingInterval, check);
    wasLidOpen_ = !quietly([this] { return isLidClosed(); });
    observer_ = workspace_.observe(ports::screensDidSleep, check);
}

void LidMonitor::stop()
{
    assertOnMainActor(mainActor_);
    observer_.reset();
    timer_.reset();
}

void LidMonitor::check()
{
    assertOnMainActor(mainActor_);
    // No timer: the monitor was stopped after this check was queued.
    if (timer_ == nullptr) {
        return;
    }
    const bool isClosed = isLidClosed();
    const bool wasClosedNow = wasLidOpen_ && isClosed;
    wasLidOpen_ = !isClosed;
    if (wasClosedNow && onLidClosed) {
        // Copied and called last: the owner may replace the callback or destroy the monitor in it.
        const auto report = onLidClosed;
        report();
    }
}

} // namespace sentrel
