#pragma once

#include "alerts/AlertUploader.hpp"
#include "alerts/CoalescedPasses.hpp"
#include "alerts/PendingCloudDeletionStore.hpp"
#include "alerts/StoredAlert.hpp"
#include "cloud/CloudKitService.hpp"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sentrel {

class LocalAlertStore;

namespace ports {
class FileSystem;
class UserDefaults;
} // namespace ports

/// The list of alerts, as the outbox uses it. Main actor only.
class OutboxList {
public:
    /// Whether a first refresh has ended: before it nobody knows which alerts the cloud holds.
    [[nodiscard]] virtual bool isLoaded() const = 0;

    /// Whether the list lacks an answer of the cloud that another refresh may bring.
    [[nodiscard]] virtual bool isRefreshOwed() const = 0;

    /// Takes out the alerts that the list shows as the cloud's.
    virtual void subtractThoseInCloud(std::unordered_set<UUID>& ids) const = 0;

    /// An attempt to upload the alert has ended, and the outbox has taken note of its outcome.
    virtual void attemptEnded(const UUID& id, AlertUploader::Outcome outcome) = 0;

    /// The cloud has not confirmed all the deletions that it was asked for.
    virtual void deletionsFailed() = 0;

    [[nodiscard]] virtual Async<void> refresh() = 0;
    virtual void userDidChange() = 0;

    /// A pass is over: alerts that waited may have been uploaded or deleted.
    virtual void passEnded() = 0;

protected:
    ~OutboxList() = default;
};

/// The work that this Mac owes iCloud: alerts that it doesn't hold yet, on the disk or in memory, and deletions that it
/// has not confirmed. A list without the cloud's answer is owed to the user, too. Main actor only; everything referred
/// to outlives it.
///
/// - One pass at a time: deletions first, then uploads, oldest first and one at a time, then a refresh of the list.
/// - While something is owed and a first refresh was tried, a pass runs or a retry waits. Retries come after 30 s, and
/// then at
///   growing intervals of at most 5 min; never during the cloud's backoff.
/// - An alert leaves the outbox only when the database holds it, or the user has deleted it.
/// - A deletion is asked of, and confirmed by, the database of the user whose alert it was.
class AlertOutbox {
public:
    struct Ports {
        ports::UserDefaults& defaults;
        ports::FileSystem& files;
    };

    AlertOutbox(MainActor actor, CloudKitService& cloud, LocalAlertStore& localStore, AlertUploader& uploader,
                OutboxList& list, Ports ports);
    AlertOutbox(const AlertOutbox&) = delete;

    /// Keeps in memory an alert that could not be saved completely on this Mac, until a pass saves or uploads it.
    void hold(const AlertEvent& alert, std::optional<Bytes> photo);

    /// Takes note of an attempt that has ended. An uploaded alert is removed from this Mac; any other waits from now
    /// on.
    void noteAttempt(const UUID& id, AlertUploader::Outcome outcome);

    /// Deletes the alerts here at once, and in the cloud as soon as possible.
    void deleteAlerts(const std::unordered_set<UUID>& ids);

    /// Runs a pass, or one more after the pass under way. Uploads end at the first sign that iCloud is unavailable,
    /// throttled or full; an alert that the server refuses doesn't delay the others.
    [[nodiscard]] Async<void> catchUp();

    /// Call when iCloud is known to take uploads. Starts a pass if anything is waiting and none is running.
    void catchUpIfOwed();

    /// Call with a list that the database has just given: removes the copies of its alerts on this Mac.
    void dropCopies(const std::unordered_set<UUID>& ids);

    /// Call after each refresh. `isFresh` tells that the database has answered it.
    void listRefreshed(bool isFresh);

    /// Call with a list that the database has just given: its alerts that the user had deleted before they arrived are
    /// deleted again.
    void deleteThoseReturned();

    /// Whether the user has deleted the cloud's alert; the list must not show it.
    [[nodiscard]] bool hides(const UUID& id) const { return isDeleted(id) || pendingDeletions_.ids().contains(id); }

    /// Whether the user has deleted the alert in this run of the application.
    [[nodiscard]] bool isDeleted(const UUID& id) const { return uploader_.discarded().contains(id); }

    /// The alerts on the disk and those held in memory.
    [[nodiscard]] std::vector<StoredAlert> alertsHere();

    /// The same, with the disk read off the main thread.
    [[nodiscard]] Async<std::vector<StoredAlert>> alertsHereInBackground();

    /// Their identifiers, and those of alerts that the list doesn't show as the cloud's.
    [[nodiscard]] std::unordered_set<UUID> idsHere() const;
    [[nodiscard]] std::unordered_set<UUID> waitingIDs() const;

    /// The state of an alert's photo on this Mac.
    struct Photo {
        bool isThere = false;
        std::optional<Bytes> content; ///< none also when it can't be read
    };
    [[nodiscard]] Async<Photo> photoHere(UUID id, QualityOfService priority);

    [[nodiscard]] const PendingCloudDeletionStore& pendingDeletions() const { return pendingDeletions_; }

private:
    struct HeldAlert {
        AlertEvent alert;
        std::optional<Bytes> photo;
    };

    void catchUpWithWhatIsNew();
    [[nodiscard]] bool isAnythingOwed(bool countsRefused = true) const;
    void cancelRetry();
    void planRetry();
    void ensureRetry();
    Async<void> retryAfter(Duration delay);

    Async<void> pass();
    Async<void> passWithoutRetry();
    void saveHeld();
    [[nodiscard]] std::vector<StoredAlert> withHeld(std::vector<StoredAlert> stored) const;
    Async<void> uploadWaiting();
    Async<AlertUploader::Outcome> uploadStored(StoredAlert stored);
    Async<void> deletePending();
    Async<bool> deleteBatch(std::unordered_set<UUID> ids);
    [[nodiscard]] std::vector<UUID> deletableIDs() const;

    MainActor actor_;
    CloudKitService& cloud_;
    LocalAlertStore& localStore_;
    AlertUploader& uploader_;
    OutboxList& list_;
    ports::FileSystem& files_;
    PendingCloudDeletionStore pendingDeletions_;
    std::unordered_map<UUID, HeldAlert> held_;
    std::unordered_set<UUID> slow_;    ///< alerts whose upload timed out; they come last
    std::unordered_set<UUID> refused_; ///< alerts that the server refused; skipped until the next retry or catch-up
    Duration retryDelay_{};            ///< minimum wait before the next retry; zero after a success
    Task<void> retry_;                 ///< waiting retry; none when nothing is owed or a pass runs
    Observation syncErrors_;
    CoalescedPasses deletions_;
    CoalescedPasses passes_;
    TaskBag tasks_;
};

} // namespace sentrel
