#include "cloud/MacPresenceService.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "cloud/PresenceTimes.hpp"
#include "core/Events.hpp"
#include "foundation/Fatal.hpp"
#include "foundation/Quietly.hpp"
#include "ports/Journal.hpp"
#include "ports/RemoteNotifications.hpp"
#include "ports/UserDefaults.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/Sleep.hpp"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

// Receives the phone's commands and decides which of them to obey.

namespace sentrel {

namespace {

constexpr const char* lastSequenceKey = "sentrel.macLastAppliedCommandSequence";

} // namespace

void MacPresenceService::receive(const ports::CloudNotification& notification)
{
    assertOnMainActor(actor_);
    if (notification.subscriptionID != CloudSubscriptions::macCommandIdentifier) {
        return;
    }
    // The subscription belongs to the account: every Mac hears of every Mac's commands. One that can't tell its own
    // asks.
    const auto own = quietly([this] { return std::optional{commandRecordName(deviceID())}; });
    if (!notification.recordName || !own || *notification.recordName == *own) {
        pollSoon();
    }
}

void MacPresenceService::pollSoon()
{
    // The poll under way, if there is one, may have read the record before it changed.
    pollRequested_ = true;
    wakePoll();
}

void MacPresenceService::wakePoll()
{
    assertOnMainActor(actor_);
    if (const auto continuation = std::exchange(pollWakeContinuation_, nullptr)) {
        continuation->signal();
    }
}

Async<void> MacPresenceService::pollForCommands()
{
    for (;;) {
        const bool isRequested = std::exchange(pollRequested_, false);
        const bool isAnswered = co_await poll();
        pollOwed_ = !isAnswered && (isRequested || pollOwed_);
        if (isAnswered) {
            // In its own task: a hanging subscription delays no command.
            tasks_.add(actor_.spawn(cloud_.ensureSubscriptions()));
        }
        if (!pollRequested_) {
            co_await sleepUntilWokenOrElapsed(pollWait());
        }
    }
}

/// Fetches the command and obeys it. False when iCloud gave no answer.
Async<bool> MacPresenceService::poll()
{
    PollAnswer answer;
    try {
        answer = co_await AsyncTimeout::run(actor_, cloudTimeLimit, askForCommand());
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        cloud_.recordSyncFailure(error);
    } catch (...) {
        // Raised: the polls go on.
    }
    if (answer.command) {
        quietly([&] { obey(*answer.command); });
    }
    co_return answer.isGiven;
}

Async<MacPresenceService::PollAnswer> MacPresenceService::askForCommand()
{
    const bool isAvailable = co_await cloud_.refreshAvailability(false);
    PollAnswer answer;
    if (isAvailable) {
        answer.command = co_await cloud_.fetchCommand(deviceID());
        answer.isGiven = true;
    }
    co_return answer;
}

Duration MacPresenceService::pollWait() const
{
    // Pushes aren't repeated: until the announced command has been fetched, only polling helps.
    if (pushTokenRegistered_ && cloud_.macCommandSubscriptionEnsured() && !pollOwed_) {
        return pollIntervalWithPushes;
    }
    const Duration backoff = quietly([this] { return cloud_.remainingBackoff(); });
    return std::clamp(backoff, shortestPollInterval, longestPollInterval);
}

Async<void> MacPresenceService::sleepUntilWokenOrElapsed(Duration span)
{
    if (pollSleepGeneration_ == std::numeric_limits<std::int64_t>::max()) {
        fatalError("too many sleeps between polls to be counted");
    }
    ++pollSleepGeneration_;
    const auto continuation = std::make_shared<Semaphore>();
    pollWakeContinuation_ = continuation;
    actor_.spawn(wakeAfter(anchor_.weak(), pollSleepGeneration_, span));
    co_await continuation->wait();
}

Async<void> MacPresenceService::wakeAfter(Weak<MacPresenceService> weak, std::int64_t generation, Duration span)
{
    co_await sleepFor(span);
    MacPresenceService* const self = weak.get();
    // The timer of a sleep that ended early must not end a later one.
    if (self != nullptr && self->pollSleepGeneration_ == generation) {
        self->wakePoll();
    }
}

void MacPresenceService::obey(const RemoteCommand& command)
{
    // The command stays in the record, and each poll finds it again. Known here also if its sequence was not stored.
    if (handledCommand_ == command) {
        return;
    }
    // Equal, not "at most": a phone that was reset counts from the beginning and must be obeyed.
    if (command.sequence == ports_.defaults.integer(lastSequenceKey).value_or(0)) {
        ignore(command, "repeated");
    } else if (!command.issuedAt) {
        ignore(command, "undated");
    } else if (const double age = ports_.wallClock.now().secondsSince(*command.issuedAt); age > longestCommandAge) {
        ignore(command, "stale");
    } else {
        apply(command);
    }
}

void MacPresenceService::apply(const RemoteCommand& command)
{
    handledCommand_ = command;
    // Settings that could not be stored are changed all the same.
    quietly([&] { settings_.set(&AlarmSettings::isArmed, command.requestedArmState); });
    // Observers of the settings have handled any change by now, and a second sync is harmless. A command that changes
    // no setting notifies nobody, but the alarm's state may differ from the stored one.
    alarm_.syncWithSettings(settings_.settings());
    noteSequence(command);
    const std::string_view why = command.requestedArmState ? "arm" : "disarm";
    ports_.journal.note(events::CommandApplied{command.sequence, why});
    // On a MacBook the alarm triggers the publication of its new state.
    if (!isCompatibleComputer_) {
        startPublication();
    }
}

/// Tried twice: without the note, the next process would obey the command again.
void MacPresenceService::noteSequence(const RemoteCommand& command)
{
    insistently([&] { ports_.defaults.setInteger(lastSequenceKey, command.sequence); });
}

void MacPresenceService::ignore(const RemoteCommand& command, std::string_view why)
{
    handledCommand_ = command;
    noteSequence(command); // counts as seen, so that setting the clock back doesn't make it fresh again
    ports_.journal.note(events::CommandIgnored{command.sequence, why});
}

} // namespace sentrel
