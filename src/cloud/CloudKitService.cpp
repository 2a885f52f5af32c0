#include "cloud/CloudKitService.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "cloud/RecordMerge.hpp"
#include "core/Events.hpp"
#include "core/LocalizedText.hpp"
#include "foundation/Quietly.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

constexpr double secondsOfAnswer = 60.0;
constexpr double secondsOfFailure = 20.0; // shorter, so that a recovery is noticed soon

std::filesystem::path cacheDirectory(ports::HostInfo& host)
{
    return host.applicationSupportDirectory().value_or(host.temporaryDirectory()) / "Sentrel";
}

bool isOfNetwork(const std::exception_ptr& error)
{
    if (error == nullptr) {
        return false;
    }
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& cause) {
        return isNetworkError(cause);
    }
}

/// Adds the text to the record's list; false when already listed.
bool addToList(ports::CloudRecord& record, const std::string& field, const std::string& text)
{
    const auto* const listed = ports::fieldOf<TextList>(record, field);
    const TextList texts = listed != nullptr ? *listed : TextList{};
    if (std::find(texts.begin(), texts.end(), text) != texts.end()) {
        return false;
    }
    record.fields[field] = texts.with({text});
    return true;
}

} // namespace

CloudKitService::CloudKitService(MainActor actor, Ports ports)
    : actor_(actor),
      ports_(ports),
      alerts_(actor, {ports.database, ports.files, ports.host, ports.language, ports.journal},
              {ports.files, ports.host, ports.defaults, ports.random}, cacheDirectory(ports.host),
              ports.defaults.text(cacheOwnerKey)),
      subscriptions_(actor, ports.database, ports.wallClock,
                     [this](const std::exception& error) { return userFacingMessage(error); })
{
}

Async<bool> CloudKitService::refreshAvailability(bool force)
{
    assertOnMainActor(actor_);
    const Date now = ports_.wallClock.now();
    // An expiry beyond an answer's lifetime was set before the clock was turned back.
    const double remaining = availabilityCacheExpiry_ ? availabilityCacheExpiry_->secondsSince(now) : 0.0;
    if (!force && remaining > 0.0 && remaining <= secondsOfAnswer) {
        co_return isAvailable.get();
    }
    try {
        lastAccountStatus_ = co_await ports_.account.accountStatus();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        lastAccountStatus_.reset();
        lastAvailabilityError_ = std::current_exception();
        availabilityCacheExpiry_ = ports_.wallClock.now().addingSeconds(secondsOfFailure);
        isAvailable = false;
        co_return false;
    }
    lastAvailabilityError_ = nullptr;
    availabilityCacheExpiry_ = ports_.wallClock.now().addingSeconds(secondsOfAnswer);
    const bool isUsable = lastAccountStatus_ == ports::CloudAccountStatus::available;
    if (isUsable) {
        isReachable = true;
    }
    isAvailable = isUsable;
    co_return isUsable;
}

bool CloudKitService::mayHaveAccount() const
{
    using ports::CloudAccountStatus;
    const auto status = lastAccountStatus_.value_or(CloudAccountStatus::couldNotDetermine);
    return status == CloudAccountStatus::available || status == CloudAccountStatus::couldNotDetermine;
}

Async<bool> CloudKitService::checkAvailability(bool force)
{
    return trueInTime(refreshAvailability(force));
}

Async<bool> CloudKitService::trueInTime(Async<bool> question)
{
    bool isTrue = false;
    try {
        isTrue = co_await AsyncTimeout::run(actor_, cloudTimeLimit, std::move(question));
    } catch (const AsyncTimeout::TimedOut& error) {
        recordSyncFailure(error);
    }
    co_return isTrue;
}

void CloudKitService::networkPathChanged(bool isSatisfied)
{
    assertOnMainActor(actor_);
    isReachable = isSatisfied;
    if (!isSatisfied) {
        trustAvailabilityAtMost(secondsOfFailure);
    }
}

void CloudKitService::trustAvailabilityAtMost(double seconds)
{
    const Date latest = ports_.wallClock.now().addingSeconds(seconds);
    availabilityCacheExpiry_ = std::min(availabilityCacheExpiry_.value_or(latest), latest);
}

Async<bool> CloudKitService::verifyCacheOwner()
{
    assertOnMainActor(actor_);
    const std::uint64_t check = ++ownerChecks_;
    isOwnerCheckOwed_ = true;
    std::string owner;
    try {
        const auto name = co_await ports_.account.userRecordName();
        owner = name.value_or("");
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        // The user is unknown, most often because the network is away. Treating that as a change would drop the cache
        // at each launch without a network, and storing it would hide a change that is found later.
        co_return false;
    }
    if (check != ownerChecks_) {
        co_return false; // a later check has begun; answers may arrive out of order
    }
    std::optional<std::string> previous;
    try {
        previous = ports_.defaults.text(cacheOwnerKey);
        ports_.defaults.setText(cacheOwnerKey, owner);
    } catch (...) {
        co_return false; // the answer can't be noted: the check remains owed
    }
    isOwnerCheckOwed_ = false;
    if (!previous || *previous == owner) {
        alerts_.setOwner(std::move(owner));
        co_return false;
    }
    ports_.journal.note(events::CloudUserChanged{});
    alerts_.startOver(std::move(owner));
    macDeviceIDsInCatalog_.clear();
    // The new user's database has neither subscription and has not throttled us.
    subscriptions_.startOver();
    co_return true;
}

Async<bool> CloudKitService::checkCacheOwner()
{
    return trueInTime(verifyCacheOwner());
}

std::string CloudKitService::cacheOwner() const
{
    return ports_.defaults.text(cacheOwnerKey).value_or("");
}

std::string CloudKitService::userFacingMessage(const std::exception& error) const
{
    return sentrel::userFacingMessage(error, lastAccountStatus_, ports_.language);
}

void CloudKitService::recordSyncFailure(const std::exception& error)
{
    assertOnMainActor(actor_);
    lastSyncError = userFacingMessage(error);
    if (isNetworkError(error)) {
        isReachable = false;
        quietly([this] { trustAvailabilityAtMost(secondsOfFailure); });
    }
    if (isThrottlingError(error)) {
        quietly([&] { requestBackoff_.recordFailure(cloudKitErrorOf(error)->retryAfter, ports_.wallClock.now()); });
    }
}

void CloudKitService::recordSyncSuccess()
{
    assertOnMainActor(actor_);
    lastSyncError = std::nullopt;
    isReachable = true;
    requestBackoff_.resetOnSuccess();
}

/// Records a successful request. Throttling of the catalog lengthens the backoff but is not shown to the user.
void CloudKitService::recordSync(const std::optional<ports::CloudError>& throttling)
{
    recordSyncSuccess();
    if (throttling) {
        requestBackoff_.recordFailure(throttling->retryAfter, ports_.wallClock.now());
    }
}

Duration CloudKitService::remainingBackoff() const
{
    return durationFromSeconds(
        std::min(requestBackoff_.remainingDelay(ports_.wallClock.now()), requestBackoff_.maxDelay));
}

CloudKitServiceError CloudKitService::unavailabilityError() const
{
    const bool isNetworkAway = isOfNetwork(lastAvailabilityError_) || (!isReachable && !lastAccountStatus_);
    return CloudKitServiceError{isNetworkAway ? CloudKitServiceError::Kind::networkUnavailable
                                              : CloudKitServiceError::Kind::notSignedIn};
}

std::string CloudKitService::unavailabilityMessage() const
{
    // The message for a missing account names only the iPhone; the general one names both devices.
    const bool isTheirAccount = lastAccountStatus_ != ports::CloudAccountStatus::noAccount;
    const auto ofAccount = lastAccountStatus_ && isTheirAccount ? accountMessage(*lastAccountStatus_) : std::nullopt;
    return ofAccount ? localizedInAnyCase(ports_.language, *ofAccount) : userFacingMessage(unavailabilityError());
}

Async<void> CloudKitService::uploadAlert(AlertEvent alert, std::optional<Bytes> photo)
{
    assertOnMainActor(actor_);
    if (!isAvailable) {
        throw unavailabilityError();
    }
    const auto throttling = co_await alerts_.upload(std::move(alert), std::move(photo));
    recordSync(throttling);
}

Async<bool> CloudKitService::isUploadConfirmed(UUID id)
{
    const bool isThere = alerts_.holds(id);
    if (isThere) {
        co_await alerts_.flush();
        recordSyncSuccess();
    }
    co_return isThere;
}

std::vector<AlertEvent> CloudKitService::cachedAlerts() const
{
    assertOnMainActor(actor_);
    return alerts_.cached();
}

Async<void> CloudKitService::refreshAlerts()
{
    assertOnMainActor(actor_);
    const auto throttling = co_await alerts_.refresh();
    recordSync(throttling);
}

Async<std::optional<Bytes>> CloudKitService::alertPhoto(UUID id)
{
    assertOnMainActor(actor_);
    auto photo = co_await alerts_.photo(id);
    recordSyncSuccess();
    co_return std::move(photo);
}

Async<std::unordered_set<UUID>> CloudKitService::deleteAlerts(std::unordered_set<UUID> ids)
{
    assertOnMainActor(actor_);
    if (ids.empty()) {
        co_return ids;
    }
    CloudAlerts::Deletion deletion = co_await alerts_.remove(std::move(ids));
    if (deletion.error == nullptr) {
        recordSync(deletion.throttling);
    } else {
        try {
            std::rethrow_exception(deletion.error);
        } catch (const std::exception& error) {
            recordSyncFailure(error);
        }
    }
    co_return std::move(deletion.gone);
}

Async<void> CloudKitService::publishPresence(DevicePresence presence)
{
    assertOnMainActor(actor_);
    std::vector<ports::CloudRecord> records(1, presenceRecord(presence));
    const std::string name = records.front().name;
    std::vector<std::string> nothing;
    const auto answer = co_await ports_.database.modify(std::move(records), std::move(nothing),
                                                        ports::CloudSavePolicy::changedKeys, false);
    const auto saved = answer.saved.find(name);
    if (saved == answer.saved.end()) {
        throw ports::CloudError{ports::cloudErrorDomain, CloudErrorCode::internalError,
                                "the server's answer omits the record"};
    }
    if (const auto* const error = std::get_if<ports::CloudError>(&saved->second)) {
        throw ports::CloudError{*error};
    }
    if (!macDeviceIDsInCatalog_.contains(presence.deviceID)) {
        co_await listInCatalog(presence.deviceID);
    }
    recordSyncSuccess();
}

Async<void> CloudKitService::listInCatalog(std::string deviceID)
{
    const auto owner = ports_.defaults.text(cacheOwnerKey);
    RecordMerge merge = [deviceID](ports::CloudRecord& record) { return addToList(record, deviceIDsField, deviceID); };
    co_await mergeIntoRecord(ports_.database, deviceCatalogRecordType, deviceCatalogRecordName, std::nullopt,
                             std::move(merge));
    // A user who signed in meanwhile has another catalog.
    if (ports_.defaults.text(cacheOwnerKey) == owner) {
        macDeviceIDsInCatalog_.insert(std::move(deviceID));
    }
}

Async<std::optional<RemoteCommand>> CloudKitService::fetchCommand(std::string deviceID)
{
    assertOnMainActor(actor_);
    const std::string name = commandRecordName(deviceID);
    std::vector<std::string> names(1, name);
    const auto results = co_await ports_.database.records(std::move(names), commandKeys());
    const auto found = results.find(name);
    std::optional<RemoteCommand> command;
    if (found != results.end()) {
        if (const auto* const error = std::get_if<ports::CloudError>(&found->second)) {
            if (!isCloudKitError(*error, CloudErrorCode::unknownItem)) {
                throw ports::CloudError{*error};
            }
        } else {
            command = commandOf(std::get<ports::CloudRecord>(found->second));
        }
    }
    recordSyncSuccess();
    co_return command;
}

Async<void> CloudKitService::ensureSubscriptions()
{
    assertOnMainActor(actor_);
    if (isAvailable) {
        co_await subscriptions_.ensure();
    }
}

} // namespace sentrel
