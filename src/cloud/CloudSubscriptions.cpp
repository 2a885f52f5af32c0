#include "cloud/CloudSubscriptions.hpp"

#include "cloud/AlertRecord.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "cloud/DeviceCatalog.hpp"
#include "ports/CloudConstants.hpp"
#include "ports/WallClock.hpp"

#include <utility>

namespace sentrel {

namespace {

/// Shows a notification on the user's other devices for each alert that is meant to have one.
ports::CloudSubscription alertSubscription()
{
    ports::CloudSubscription subscription;
    subscription.identifier = CloudSubscriptions::alertIdentifier;
    subscription.recordType = alertRecordType;
    subscription.predicate = {"sendNotification == %@", {std::int64_t{1}}};
    subscription.options = ports::firesOnRecordCreation;
    // The receiving device looks the key up in its own language and puts the record's fields in.
    subscription.alertLocalizationKey = "%1$@ on %2$@";
    subscription.alertLocalizationArguments = {"triggerName", "deviceName"};
    subscription.soundName = "default";
    return subscription;
}

/// Wakes the Macs silently when the phone has written a command for one of them. The database has one subscription of
/// this name for all devices, so that it can't be narrowed to the commands of the Mac that saves it.
ports::CloudSubscription macCommandSubscription()
{
    ports::CloudSubscription subscription;
    subscription.identifier = CloudSubscriptions::macCommandIdentifier;
    subscription.recordType = deviceCatalogRecordType;
    subscription.predicate = {std::string{requestedArmStateField} + " IN %@", {std::vector<std::int64_t>{0, 1}}};
    subscription.options = ports::firesOnRecordCreation | ports::firesOnRecordUpdate;
    subscription.sendsContentAvailable = true;
    return subscription;
}

/// Whether the backoff still lasts. A wait beyond the longest delay is due to a clock that was turned back.
bool mustWait(const CloudBackoffPolicy& backoff, Date now)
{
    const double seconds = backoff.remainingDelay(now);
    return seconds > 0.0 && seconds <= backoff.maxDelay;
}

} // namespace

CloudSubscriptions::CloudSubscriptions(MainActor actor, ports::CloudDatabase& database, ports::WallClock& wallClock,
                                       std::function<std::string(const std::exception&)> messageOf)
    : actor_(actor), database_(database), wallClock_(wallClock), messageOf_(std::move(messageOf))
{
}

Async<void> CloudSubscriptions::ensure()
{
    std::optional<std::string> unheard; // not shown: without it the Mac only polls more often
    co_await ensure(macCommand_, macCommandSubscription(), unheard);
    co_await ensure(alert_, alertSubscription(), pushSubscriptionError_);
}

Async<void> CloudSubscriptions::ensure(State& state, ports::CloudSubscription subscription,
                                       std::optional<std::string>& message)
{
    if (state.isEnsured || state.isBeingSaved || mustWait(state.backoff, wallClock_.now())) {
        co_return;
    }
    const std::uint64_t user = users_;
    state.isBeingSaved = true;
    try {
        co_await AsyncTimeout::run(actor_, cloudTimeLimit, database_.saveSubscription(std::move(subscription)));
    } catch (const CancellationError&) {
        state.isBeingSaved = false;
        throw;
    } catch (const std::exception& error) {
        state.isBeingSaved = false;
        if (user == users_) {
            const auto* const cloudError = dynamic_cast<const ports::CloudError*>(&error);
            state.backoff.recordFailure(cloudError != nullptr ? cloudError->retryAfter : std::nullopt,
                                        wallClock_.now());
            message = messageOf_(error);
        }
        co_return;
    }
    state.isBeingSaved = false;
    if (user == users_) {
        state.isEnsured = true;
        state.backoff.resetOnSuccess();
        message.reset();
    }
}

void CloudSubscriptions::startOver()
{
    ++users_;
    for (State* const state : {&alert_, &macCommand_}) {
        state->isEnsured = false;
        state->backoff.resetOnSuccess();
    }
    pushSubscriptionError_.reset();
}

} // namespace sentrel
