#include "cloud/MacPresenceService.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "cloud/PresenceTimes.hpp"
#include "core/Events.hpp"
#include "core/RandomUUID.hpp"
#include "foundation/Quietly.hpp"
#include "foundation/UUID.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/Sleep.hpp"

#include <algorithm>
#include <utility>

// The Mac's own state. The phone's commands are in RemoteCommands.cpp.

namespace sentrel {

namespace {

constexpr const char* deviceIDKey = "sentrel.macDeviceID";
constexpr const char* unnamedComputer = "Mac";

} // namespace

MacPresenceService::MacPresenceService(MainActor actor, bool isCompatibleComputer, CloudKitService& cloud,
                                       SettingsStore& settings, Alarm alarm, Ports ports)
    : actor_(actor),
      isCompatibleComputer_(isCompatibleComputer),
      cloud_(cloud),
      settings_(settings),
      alarm_(std::move(alarm)),
      ports_(ports)
{
}

void MacPresenceService::start()
{
    assertOnMainActor(actor_);
    if (hasStarted_) {
        return;
    }
    hasStarted_ = true;
    startHeartbeat();
    tasks_.add(actor_.spawn(pollForCommands()));
}

void MacPresenceService::startHeartbeat()
{
    if (heartbeatTask_) {
        return;
    }
    nextIsLast_ = false; // a quit that was called off leaves the Mac armed
    startPublication();
    heartbeatTask_ = actor_.spawn(beat());
    tasks_.add(heartbeatTask_);
}

void MacPresenceService::stopHeartbeat()
{
    assertOnMainActor(actor_);
    if (heartbeatTask_) {
        heartbeatTask_.cancel();
        heartbeatTask_ = {};
    }
}

void MacPresenceService::systemDidWake()
{
    assertOnMainActor(actor_);
    startPublication();
    pollSoon();
}

Async<void> MacPresenceService::beat()
{
    // A cancelled wait throws, which ends the loop.
    for (;;) {
        const Duration backoff = quietly([this] { return cloud_.remainingBackoff(); });
        co_await sleepFor(std::max(heartbeatInterval, backoff));
        co_await publishState();
    }
}

void MacPresenceService::startPublication()
{
    tasks_.add(actor_.spawn(publishState()));
}

/// Ignores the request backoff: arming and disarming are rare, and the phone must learn of them soon. Only the
/// heartbeat, which carries no news, waits.
Async<void> MacPresenceService::publishState()
{
    assertOnMainActor(actor_);
    // The current publication may carry an older state. One that hasn't begun serves every caller.
    if (!nextPublication_) {
        nextPublication_ = actor_.spawn(publishAfter(publication_));
        tasks_.add(nextPublication_);
    }
    const Task<void> mine = nextPublication_;
    co_await mine;
}

Async<void> MacPresenceService::publishLastState()
{
    nextIsLast_ = true;
    co_await publishState();
}

Async<void> MacPresenceService::publishAfter(Task<void> predecessor)
{
    if (predecessor) {
        co_await waitBriefly(predecessor);
        predecessor = {}; // or each publication would keep all earlier ones in memory
    }
    publication_ = std::exchange(nextPublication_, {});
    const bool isLeaving = std::exchange(nextIsLast_, false);
    try {
        co_await publishNow(isLeaving);
    } catch (const CancellationError&) {
        // Cancelled in favour of the next one.
    } catch (const std::exception& error) {
        // The heartbeat awaits this task and must survive its failure.
        ports_.journal.note(events::PresenceFailed{error.what()});
    } catch (...) {
        ports_.journal.note(events::PresenceFailed{"raised"});
    }
}

/// Keeps two saves in order, unless the first one hangs. A cancelled save may still arrive after the newer one; the
/// next heartbeat corrects that.
Async<void> MacPresenceService::waitBriefly(Task<void> publication)
{
    try {
        co_await AsyncTimeout::wait(actor_, longestWaitForPublication, publication);
    } catch (const AsyncTimeout::TimedOut&) {
        publication.cancel();
    }
}

Async<void> MacPresenceService::publishNow(bool isLeaving)
{
    try {
        const bool isPublished = co_await AsyncTimeout::run(actor_, cloudTimeLimit, publishIfAvailable(isLeaving));
        if (!isPublished) {
            syncError = cloud_.unavailabilityMessage();
            co_return;
        }
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        cloud_.recordSyncFailure(error);
        syncError = cloud_.userFacingMessage(error);
        co_return;
    }
    syncError = std::nullopt;
    alarm_.clearLocalSaveNoticeIfResolved();
}

Async<bool> MacPresenceService::publishIfAvailable(bool isLeaving)
{
    const bool isAvailable = co_await cloud_.refreshAvailability(false);
    if (!isAvailable) {
        co_return false;
    }
    DevicePresence presence;
    presence.deviceID = deviceID();
    presence.deviceName = ports_.host.localizedName().value_or(unnamedComputer);
    presence.lastSeen = ports_.wallClock.now();
    presence.isCompatible = isCompatibleComputer_;
    presence.isArmed = alarm_.isArmed() && !isLeaving;
    const bool isArmed = presence.isArmed;
    co_await cloud_.publishPresence(std::move(presence));
    ports_.journal.note(events::PresencePublished{isArmed});
    co_return true;
}

void MacPresenceService::setPushTokenRegistered(bool isRegistered)
{
    assertOnMainActor(actor_);
    const bool wasRegistered = std::exchange(pushTokenRegistered_, isRegistered);
    if (isRegistered) {
        startPublication();
    } else if (wasRegistered) {
        wakePoll(); // its long wait relied on pushes
    }
}

bool MacPresenceService::pushTokenRegistered() const
{
    return pushTokenRegistered_;
}

std::string MacPresenceService::deviceID()
{
    assertOnMainActor(actor_);
    const auto stored = ports_.defaults.text(deviceIDKey);
    if (stored && UUID::parse(*stored)) {
        return *stored;
    }
    std::string made = randomUUID(ports_.random).text();
    ports_.defaults.setText(deviceIDKey, made);
    return made;
}

} // namespace sentrel
