#include "sensors/PowerMonitor.hpp"

#include "foundation/Quietly.hpp"
#include "ports/SystemConstants.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/WeakCall.hpp"

#include <string_view>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration powerPollingInterval = 5s;
constexpr std::string_view stateKey = ports::powerSourceStateKey;
constexpr std::string_view acPowerValue = ports::acPowerValue;

} // namespace

PowerMonitor::PowerMonitor(MainActor mainActor, ports::PowerSources& sources) : mainActor_(mainActor), sources_(sources)
{
}

void PowerMonitor::start()
{
    assertOnMainActor(mainActor_);
    stop();
    const auto check = weakCall(mainActor_, anchor_.weak(), &PowerMonitor::check);
    // First, so that it watches even if a call below raises.
    Scheduler& scheduler = mainActor_.scheduler();
    timer_ = std::make_unique<RepeatingTimer>(scheduler, scheduler.mainExecutor(), powerPollingInterval, check);
    // Unknown counts as plugged in: the first certain reading of a battery then reports an unplugging.
    wasOnACPower_ = quietly([this] { return readState(); }) != PowerState::onBattery;
    // Null when the system makes no notification source: then only the timer notices the change.
    notification_ = sources_.observeChanges(check);
}

void PowerMonitor::stop()
{
    assertOnMainActor(mainActor_);
    timer_.reset();
    notification_.reset();
}

void PowerMonitor::check()
{
    assertOnMainActor(mainActor_);
    // No timer: the monitor was stopped after this check was queued.
    if (timer_ == nullptr) {
        return;
    }
    const PowerState state = readState();
    if (state == PowerState::unknown) {
        return;
    }
    const bool unplugged = wasOnACPower_ && state == PowerState::onBattery;
    wasOnACPower_ = state == PowerState::onAC;
    if (unplugged && onUnplugged) {
        // Copied and called last: the owner may replace the callback or destroy the monitor in it.
        const auto report = onUnplugged;
        report();
    }
}

PowerMonitor::PowerState PowerMonitor::readState()
{
    const auto snapshot = sources_.copySnapshot();
    if (snapshot == nullptr) {
        return PowerState::unknown;
    }
    const std::size_t count = snapshot->count().value_or(0);
    auto state = PowerState::unknown;
    for (std::size_t source = 0; source < count; ++source) {
        const auto text = snapshot->text(source, stateKey);
        if (!text) {
            continue;
        }
        if (*text == acPowerValue) {
            return PowerState::onAC;
        }
        state = PowerState::onBattery;
    }
    return state;
}

} // namespace sentrel
