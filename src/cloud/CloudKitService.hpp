#pragma once

#include "cloud/CloudAlerts.hpp"
#include "cloud/CloudBackoffPolicy.hpp"
#include "cloud/CloudKitServiceError.hpp"
#include "cloud/CloudSubscriptions.hpp"
#include "cloud/DeviceCatalog.hpp"
#include "core/AlertEvent.hpp"
#include "foundation/Bytes.hpp"
#include "ports/CloudAccount.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Observable.hpp"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace ports {
class CloudDatabase;
class FileSystem;
class GeneralRandom;
class HostInfo;
class Journal;
class Language;
class UserDefaults;
class WallClock;
} // namespace ports

/// The only access to the user's private iCloud database: the account's state, the alerts, the catalog of devices and
/// the push subscriptions. Main actor only. All objects it refers to must outlive it.
class CloudKitService {
public:
    /// The container in iCloud whose private database holds everything.
    static constexpr const char* containerIdentifier = "iCloud.pelma.Sentrel";

    struct Ports {
        ports::CloudAccount& account;
        ports::CloudDatabase& database;
        ports::UserDefaults& defaults;
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::WallClock& wallClock;
        ports::GeneralRandom& random;
        ports::Language& language;
        ports::Journal& journal;
    };

    /// Defaults key for the record name of the user whose alerts are cached.
    static constexpr const char* cacheOwnerKey = "CloudKitService.cacheOwnerRecordName";

    /// Reads the cache of alerts and deletes photo files left by an earlier run's uploads.
    CloudKitService(MainActor actor, Ports ports);
    CloudKitService(const CloudKitService&) = delete;

    Observable<bool> isAvailable;                         ///< the account is usable
    Observable<bool> isReachable;                         ///< iCloud answered the last request
    Observable<std::optional<std::string>> lastSyncError; ///< message of the last failure, for the user

    /// Whether the account is available. Asks at most once a minute while the account answers, every 20 s while it
    /// fails, and always when forced. Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<bool> refreshAvailability(bool force);

    /// The same within `cloudTimeLimit`; a missed deadline counts as unavailable and is recorded as a failure.
    [[nodiscard]] Async<bool> checkAvailability(bool force = false);

    [[nodiscard]] std::optional<ports::CloudAccountStatus> lastAccountStatus() const { return lastAccountStatus_; }

    /// False if iCloud has said that no account can be used: a change of the account is notified. True also while
    /// iCloud doesn't answer.
    [[nodiscard]] bool mayHaveAccount() const;
    [[nodiscard]] std::optional<Date> availabilityCacheExpiry() const { return availabilityCacheExpiry_; }

    /// Call when the network path becomes usable or is lost, which limits a cached availability to 20 s.
    void networkPathChanged(bool isSatisfied);

    /// Detects a change of the iCloud user: true after dropping the previous user's data. Never throws, but for a
    /// `CancellationError`: a user who can't be determined counts as unchanged, and the check remains owed.
    [[nodiscard]] Async<bool> verifyCacheOwner();

    /// The same within `cloudTimeLimit`; a missed deadline is recorded as a failure.
    [[nodiscard]] Async<bool> checkCacheOwner();

    /// Whether the last check of the user is still unanswered.
    [[nodiscard]] bool isOwnerCheckOwed() const { return isOwnerCheckOwed_; }

    /// The record name of the iCloud user at the last answered check; empty when there is none.
    [[nodiscard]] std::string cacheOwner() const;

    /// The reason why iCloud isn't available: no network, or nobody is signed in.
    [[nodiscard]] CloudKitServiceError unavailabilityError() const;

    /// The same for the user; the account's own message where its status is known to be the reason.
    [[nodiscard]] std::string unavailabilityMessage() const;

    [[nodiscard]] std::string userFacingMessage(const std::exception& error) const;

    /// Callers report the outcome of each request. Throttling lengthens the backoff; callers that retry must honour it,
    /// this service refuses no request.
    void recordSyncFailure(const std::exception& error);
    void recordSyncSuccess();
    [[nodiscard]] const CloudBackoffPolicy& requestBackoff() const { return requestBackoff_; }

    /// The remaining backoff, cut to the policy's maximum: a longer one is due to a wall clock that was set back.
    [[nodiscard]] Duration remainingBackoff() const;
    [[nodiscard]] bool isThrottled() const { return remainingBackoff() > Duration{}; }

    /// Uploads the alert with its photo, JPEG data. An alert that exists already counts as uploaded. Throws
    /// `CloudKitServiceError` without any request while iCloud is not available, `CloudError`, or `std::system_error`
    /// when the photo's file can't be written. A failed update of the catalog is not an error.
    [[nodiscard]] Async<void> uploadAlert(AlertEvent alert, std::optional<Bytes> photo);

    /// Whether the server is known to hold the alert; its upload has then succeeded even if the catalog update was too
    /// late. When true, changes owed to the catalog are on the disk on return.
    [[nodiscard]] Async<bool> isUploadConfirmed(UUID id);

    /// The known alerts in the cloud, in no particular order.
    [[nodiscard]] std::vector<AlertEvent> cachedAlerts() const;

    /// The known alert with this identifier, or null. Valid until the next change.
    [[nodiscard]] const AlertEvent* cachedAlert(const UUID& id) const { return alerts_.cached(id); }

    /// Collects the changes of the known alerts from now on, as long as the handle lives.
    [[nodiscard]] std::shared_ptr<const AlertMetadataCache::Changes> watchCachedAlerts() { return alerts_.watch(); }

    /// Updates the known alerts from the database, at a cost that grows with the changes only. Throws a failed
    /// request's error, with nothing changed. Calls may overlap: none undoes the results of another, or an upload or
    /// deletion meanwhile.
    [[nodiscard]] Async<void> refreshAlerts();

    /// Fetches the alert's photo; none when it has no readable photo. Throws the request's error.
    [[nodiscard]] Async<std::optional<Bytes>> alertPhoto(UUID id);

    /// Alerts that one call may delete; the server takes 400 records a request.
    static constexpr std::size_t mostDeletions = 200;

    /// Deletes alerts from the cloud. Returns those that the cloud no longer holds, including earlier
    /// deletions. Reports failures through `recordSyncFailure`, and throws only a `CancellationError`.
    [[nodiscard]] Async<std::unordered_set<UUID>> deleteAlerts(std::unordered_set<UUID> ids);

    /// Saves this Mac's presence, and lists its identifier in the catalog unless known to be listed. Throws the
    /// requests' errors.
    [[nodiscard]] Async<void> publishPresence(DevicePresence presence);

    /// Fetches this device's command; none without a command or a record. Throws the request's error.
    [[nodiscard]] Async<std::optional<RemoteCommand>> fetchCommand(std::string deviceID);

    /// Saves the two push subscriptions, once per run and user, after any backoff. Does nothing while the account is
    /// not available. Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<void> ensureSubscriptions();
    [[nodiscard]] bool macCommandSubscriptionEnsured() const { return subscriptions_.macCommandSubscriptionEnsured(); }
    [[nodiscard]] std::optional<std::string> pushSubscriptionError() const
    {
        return subscriptions_.pushSubscriptionError();
    }

private:
    /// The answer within `cloudTimeLimit`; a missed deadline means false and is recorded as a failure.
    [[nodiscard]] Async<bool> trueInTime(Async<bool> question);
    void trustAvailabilityAtMost(double seconds);
    void recordSync(const std::optional<ports::CloudError>& throttling);
    [[nodiscard]] Async<void> listInCatalog(std::string deviceID);

    MainActor actor_;
    Ports ports_;
    std::optional<ports::CloudAccountStatus> lastAccountStatus_;
    std::optional<Date> availabilityCacheExpiry_;
    std::exception_ptr lastAvailabilityError_;
    CloudBackoffPolicy requestBackoff_;
    std::uint64_t ownerChecks_ = 0; ///< checks begun so far
    bool isOwnerCheckOwed_ = false;
    CloudAlerts alerts_;
    std::unordered_set<std::string> macDeviceIDsInCatalog_;
    CloudSubscriptions subscriptions_;
};

} // namespace sentrel
