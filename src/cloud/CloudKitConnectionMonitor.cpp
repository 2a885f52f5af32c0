#include "cloud/CloudKitConnectionMonitor.hpp"

#include "core/Events.hpp"
#include "foundation/Fatal.hpp"
#include "foundation/Quietly.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "ports/CloudConstants.hpp"
#include "ports/Journal.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/WeakCall.hpp"

#include <chrono>
#include <limits>
#include <string_view>

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// Wait after the last path change: a flapping network causes one pass.
constexpr Duration pathSettlingTime = 2s;

} // namespace

CloudKitConnectionMonitor::CloudKitConnectionMonitor(MainActor actor, CloudKitService& cloud,
                                                     CloudDependents& dependents, MacPresenceService& presence,
                                                     Ports ports)
    : actor_(actor),
      cloud_(cloud),
      dependents_(dependents),
      presence_(presence),
      ports_(ports),
      queue_(actor.scheduler(), "sentrel.cloudkit-connection", QualityOfService::standard)
{
}

CloudKitConnectionMonitor::~CloudKitConnectionMonitor()
{
    // First: the path's callback uses this object's members on another thread.
    monitor_.reset();
}

void CloudKitConnectionMonitor::start()
{
    if (hasStarted_) {
        return;
    }
    hasStarted_ = true;
    insistently([this] {
        monitor_ = ports_.networkPaths.monitor(
            queue_, [this, weak = anchor_.weak()](ports::NetworkPathStatus status) { pathChanged(weak, status); });
    });
    insistently([this] {
        accountObserver_ = ports_.applicationNotifications.observe(
            ports::cloudAccountChanged, weakCall(actor_, anchor_.weak(), &CloudKitConnectionMonitor::accountDidChange));
    });
    accountDidChange();
}

/// Runs on the queue.
void CloudKitConnectionMonitor::pathChanged(const Weak<CloudKitConnectionMonitor>& weak,
                                            ports::NetworkPathStatus status)
{
    std::int64_t sequence = 0;
    {
        const std::lock_guard guard{pathSequenceLock_};
        if (pathSequence_ == std::numeric_limits<std::int64_t>::max()) {
            fatalError("the network path changed too often to be counted");
        }
        sequence = ++pathSequence_;
    }
    callIfAlive(actor_, weak, &CloudKitConnectionMonitor::apply, status, sequence);
}

void CloudKitConnectionMonitor::apply(ports::NetworkPathStatus status, std::int64_t sequence)
{
    // Updates come from a queue of their own, so they may arrive out of order.
    if (sequence <= lastAppliedPathSequence_) {
        return;
    }
    lastAppliedPathSequence_ = sequence;
    if (debouncedPathTask_) {
        debouncedPathTask_.cancel();
    }
    debouncedPathTask_ = actor_.spawn(debounce(anchor_.weak()));
    cloud_.networkPathChanged(status == ports::NetworkPathStatus::satisfied);
}

Async<void> CloudKitConnectionMonitor::debounce(Weak<CloudKitConnectionMonitor> weak)
{
    // A cancelled sleep throws, which ends the task; the query finds a cancellation in the turn in which it ended.
    co_await sleepFor(pathSettlingTime);
    const bool isCancelled = co_await isTaskCancelled();
    CloudKitConnectionMonitor* const self = weak.get();
    if (isCancelled || self == nullptr) {
        co_return;
    }
    // The pass has its own task: the next path change cancels this one, but must not cancel the pass.
    self->debouncedPathTask_ = {};
    self->requestFanOut();
}

void CloudKitConnectionMonitor::accountDidChange()
{
    tasks_.add(actor_.spawn(verifyOwnerAndFanOut()));
}

Async<void> CloudKitConnectionMonitor::verifyOwnerAndFanOut()
{
    co_await verifyOwner();
    requestFanOut();
}

Async<void> CloudKitConnectionMonitor::verifyOwner()
{
    const bool hasChanged = co_await cloud_.checkCacheOwner();
    if (hasChanged) {
        dependents_.userDidChange();
    }
}

void CloudKitConnectionMonitor::requestFanOut()
{
    if (fanOutRunning_) {
        fanOutRerunRequested_ = true;
        return;
    }
    fanOutRunning_ = true;
    tasks_.add(actor_.spawn(fanOut()));
}

Async<void> CloudKitConnectionMonitor::fanOut()
{
    do {
        fanOutRerunRequested_ = false;
        try {
            co_await passOnce();
        } catch (const std::exception& error) {
            // A failed pass is not repeated; what depends on it tries again by itself, or after the next change.
            ports_.journal.note(events::FanOutFailed{error.what()});
        } catch (...) {
            ports_.journal.note(events::FanOutFailed{"raised"});
        }
        quietly([this] { dependents_.refreshStatus(); });
        presence_.wakePoll();
    } while (fanOutRerunRequested_);
    fanOutRunning_ = false;
}

Async<void> CloudKitConnectionMonitor::passOnce()
{
    ports_.journal.note(events::FanOut{});
    // A forced check without an answer gives false; an earlier answer must not start a catch-up.
    bool isAvailable = co_await cloud_.checkAvailability(true);
    if (isAvailable) {
        isAvailable = co_await cloud_.checkAvailability(false);
    }
    if (isAvailable && cloud_.isOwnerCheckOwed()) {
        co_await verifyOwner();
    }
    if (isAvailable) {
        co_await dependents_.catchUp();
    }
}

} // namespace sentrel
