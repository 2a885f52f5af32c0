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

/// The one way to the user's private iCloud database: the account's state, the alerts, the catalog of devices and the
/// push subscriptions. Main actor only; it outlives nothing that it refers to.
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

    /// Where the defaults keep the record name of the user whose alerts are cached.
    static constexpr const char* cacheOwnerKey = "CloudKitService.cacheOwnerRecordName";

    /// Reads the cache of alerts and sweeps photo files that an earlier run's uploads left behind.
    CloudKitService(MainActor actor, Ports ports);
    CloudKitService(const CloudKitService&) = delete;

    Observable<bool> isAvailable;                         ///< the account is usable
    Observable<bool> isReachable;                         ///< iCloud answered the last request
    Observable<std::optional<std::string>> lastSyncError; ///< of the last failure, for the user

    /// Whether the account is available. Asks at most once a minute while the account answers, every 20 s while it
    /// fails, and always when forced. Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<bool> refreshAvailability(bool force);

    /// The same within `cloudTimeLimit`: an account that doesn't answer in time isn't available, and its missed
    /// deadline is recorded as a failure.
    [[nodiscard]] Async<bool> checkAvailability(bool force = false);

    [[nodiscard]] std::optional<ports::CloudAccountStatus> lastAccountStatus() const;
    [[nodiscard]] std::optional<Date> availabilityCacheExpiry() const;

    /// The network path has become usable, or has been lost: the account is then asked again within 20 s.
    void networkPathChanged(bool isSatisfied);

    /// Drops what was remembered of the previous iCloud user. True when the user has changed since. Never throws, but
    /// for a `CancellationError`: a user who can't be asked for counts as the same for now, and the check is owed.
    [[nodiscard]] Async<bool> verifyCacheOwner();

    /// The same within `cloudTimeLimit`; a missed deadline is recorded as a failure.
    [[nodiscard]] Async<bool> checkCacheOwner();

    /// Whether the last check of the user has had no answer.
    [[nodiscard]] bool isOwnerCheckOwed() const { return isOwnerCheckOwed_; }

    /// The record name of the iCloud user as of the last check that was answered; empty when nobody is known.
    [[nodiscard]] std::string cacheOwner() const;

    /// Why nothing can be asked of iCloud while it isn't available: the network is away, or nobody is signed in.
    [[nodiscard]] CloudKitServiceError unavailabilityError() const;

    /// The same for the user, in the words of the account's status where it is known to be the reason.
    [[nodiscard]] std::string unavailabilityMessage() const;

    [[nodiscard]] std::string userFacingMessage(const std::exception& error) const;

    /// How a request went, which whoever makes it tells. A throttled one makes `requestBackoff` grow; that is kept by
    /// whoever repeats requests, and no request is refused because of it.
    void recordSyncFailure(const std::exception& error);
    void recordSyncSuccess();
    [[nodiscard]] const CloudBackoffPolicy& requestBackoff() const;

    /// Uploads the alert with its photo, JPEG data. An alert that is there already counts as uploaded. Throws
    /// `CloudKitServiceError` without any request while iCloud is not available, `CloudError`, or `std::system_error`
    /// when the photo's file can't be written. A catalog that can't be brought up to date is no failure.
    [[nodiscard]] Async<void> uploadAlert(AlertEvent alert, std::optional<Bytes> photo);

    /// Whether the server is known to hold the alert, which makes an upload of it a success even if the catalog could
    /// not be brought up to date in time. What the catalog is owed is on the disk on return.
    [[nodiscard]] Async<bool> isUploadConfirmed(UUID id);

    /// What is known of the alerts in the cloud, in no particular order.
    [[nodiscard]] std::vector<AlertEvent> cachedAlerts() const;

    /// Brings what is known up to date with the database, in as many requests as there are changes. Throws what the
    /// requests throw, and then has changed nothing. Several may run at a time: what one has learnt, and what was
    /// uploaded or deleted meanwhile, no other undoes.
    [[nodiscard]] Async<void> refreshAlerts();

    /// The alert's photo from the cloud; none when it has none, or none that can be read. Throws what the request
    /// throws.
    [[nodiscard]] Async<std::optional<Bytes>> alertPhoto(UUID id);

    /// Deletes alerts from the cloud, in batches. Gives those that the cloud does not hold any more, whoever deleted
    /// them. Reports failures through `recordSyncFailure`, and throws only a `CancellationError`.
    [[nodiscard]] Async<std::unordered_set<UUID>> deleteAlerts(std::unordered_set<UUID> ids);

    /// Writes this Mac's presence, and its identifier into the catalog when it isn't known to be there. Throws what the
    /// requests throw.
    [[nodiscard]] Async<void> publishPresence(DevicePresence presence);

    /// The command that waits for this device; none without one or without a record. Throws what the
    /// request throws.
    [[nodiscard]] Async<std::optional<RemoteCommand>> fetchCommand(std::string deviceID);

    /// Saves the two push subscriptions, once in a run for each user, unless a failure asks to wait. Nothing while the
    /// account is not available. Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<void> ensureSubscriptions();
    [[nodiscard]] bool macCommandSubscriptionEnsured() const;
    [[nodiscard]] std::optional<std::string> pushSubscriptionError() const;

private:
    void trustAvailabilityAtMost(double seconds);
    void recordSync(const std::optional<ports::CloudError>& throttling);
    [[nodiscard]] Async<void> listInCatalog(std::string deviceID);

    MainActor actor_;
    Ports ports_;
    std::optional<ports::CloudAccountStatus> lastAccountStatus_;
    std::optional<Date> availabilityCacheExpiry_;
    std::exception_ptr lastAvailabilityError_;
    CloudBackoffPolicy requestBackoff_;
    std::uint64_t ownerChecks_ = 0; ///< how many have begun
    bool isOwnerCheckOwed_ = false;
    CloudAlerts alerts_;
    std::unordered_set<std::string> macDeviceIDsInCatalog_;
    CloudSubscriptions subscriptions_;
};

} // namespace sentrel
