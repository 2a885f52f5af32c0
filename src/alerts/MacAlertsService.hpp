#pragma once

#include "alerts/AlertRow.hpp"
#include "alerts/AlertUploader.hpp"
#include "alerts/CoalescedPasses.hpp"
#include "alerts/PendingCloudDeletionStore.hpp"
#include "alerts/StoredAlert.hpp"
#include "cloud/CloudKitService.hpp"
#include "runtime/Weak.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>

namespace sentrel {

class LocalAlertStore;

namespace ports {
class Calendar;
}

/// The list of alerts that the user sees: those in the cloud and those on this Mac, merged. Main actor only. All
/// objects it refers to must outlive it.
class MacAlertsService {
public:
    struct Ports {
        ports::UserDefaults& defaults;
        ports::FileSystem& files;
        ports::WallClock& wallClock;
        ports::Calendar& calendar;
        ports::Language& language;
    };

    /// `uploadsCaughtUp` is called whenever alerts that waited may have been uploaded or deleted.
    MacAlertsService(MainActor actor, CloudKitService& cloud, LocalAlertStore& localStore, AlertUploader& uploader,
                     std::function<void()> uploadsCaughtUp, Ports ports);
    MacAlertsService(const MacAlertsService&) = delete;

    Observable<AlertList> alerts; ///< newest first; never null
    Observable<std::optional<std::string>> errorMessage;
    Observable<std::optional<std::string>> infoMessage;
    Observable<bool> isLoading;
    Observable<bool> hasLoadedInitialAlerts;
    Observable<bool> iCloudStorageIsFull; ///< the last attempted upload failed for lack of space

    /// The rows by date, as of now.
    [[nodiscard]] std::vector<AlertSection> sections() const;

    [[nodiscard]] bool holds(const UUID& id) const;

    /// Shows an alert that has just been saved on this Mac; no effect when it is shown already or has been deleted.
    void merge(const StoredAlert& stored);

    /// Keeps in memory an alert that could not be saved completely on this Mac. The alert is shown, and the next
    /// catch-up saves or uploads it.
    void hold(const AlertEvent& alert, std::optional<Bytes> photo);

    /// Call when an attempt to upload the alert has ended. An uploaded alert is removed from this Mac; any other waits
    /// from now on.
    void noteAttempt(const UUID& id, AlertUploader::Outcome outcome);

    /// Call when another user has signed in to iCloud: hides the previous user's cloud alerts.
    void userDidChange();

    /// Recomputes `infoMessage`.
    void refreshStorageNotice();

    /// Updates the list from the cloud, within 15 s; within 120 s for the first list or after a refresh that timed out.
    /// An older refresh never overwrites the results of a newer one. Never throws, but for a `CancellationError`, and
    /// then has changed nothing.
    [[nodiscard]] Async<void> refresh();

    /// Starts a refresh and cancels the one that an earlier call started.
    void startRefresh();

    /// Deletes alerts here at once and in the cloud as soon as possible.
    void deleteAlerts(const std::unordered_set<UUID>& ids);

    /// The alert's photo, from this Mac or from the cloud; none when it is missing or can't be fetched.
    [[nodiscard]] Async<std::optional<Bytes>> photo(UUID id);

    /// Runs a catch-up pass: deletions, then uploads, oldest first, one at a time; then a refresh. Uploads end at the
    /// first sign that iCloud is unavailable, throttled or full; an alert that the server refuses doesn't delay the
    /// others. One pass at a time: a call during a pass requests one more.
    [[nodiscard]] Async<void> catchUp();

    /// Call when iCloud is known to take uploads. Starts a pass if anything is waiting and none is running. Leftovers
    /// of a pass are retried after 30 s, and then at growing intervals of at most 5 min.
    void catchUpIfOwed();

    [[nodiscard]] const PendingCloudDeletionStore& pendingDeletions() const { return pendingDeletions_; }

private:
    /// The cloud's answer to a refresh.
    struct CloudAnswer {
        bool isFresh = false; ///< the database itself has answered
        std::optional<std::string> error;
    };
    struct HeldAlert {
        AlertEvent alert;
        std::optional<Bytes> photo;
    };
    class Loading;

    [[nodiscard]] bool isThrottled();
    Async<CloudAnswer> askCloud();
    [[nodiscard]] Duration longestRefresh() const;
    void apply(const CloudAnswer& answer, std::vector<StoredAlert> local);
    [[nodiscard]] std::vector<AlertEvent> cloudAlerts(bool isFresh);
    void publish(std::vector<AlertRow> rows);
    [[nodiscard]] std::vector<AlertRow> takeRows();
    [[nodiscard]] std::optional<std::string> storageNotice();
    [[nodiscard]] std::unordered_set<UUID> waitingIDs();
    void noteUploaded(const UUID& id);
    [[nodiscard]] bool isAnythingOwed(bool countsRefused = true);
    void catchUpWithWhatIsNew();
    void cancelRetry();
    void planRetry();
    void ensureRetry();
    Async<void> retryAfter(Duration delay);

    Async<void> catchUpPass();
    Async<void> uploadWaiting();
    Async<bool> mayUploadNext();
    Async<AlertUploader::Outcome> uploadStored(StoredAlert stored);
    Async<std::vector<StoredAlert>> alertsHere();
    [[nodiscard]] std::vector<StoredAlert> withHeld(std::vector<StoredAlert> stored) const;
    void saveHeld();
    Async<void> deletePending();
    Async<bool> deleteBatch(std::unordered_set<UUID> ids);
    [[nodiscard]] std::vector<UUID> deletableIDs() const;

    MainActor actor_;
    CloudKitService& cloud_;
    LocalAlertStore& localStore_;
    AlertUploader& uploader_;
    const std::function<void()> uploadsCaughtUp_;
    Ports ports_;
    PendingCloudDeletionStore pendingDeletions_;
    std::int64_t refreshGeneration_ = 0;
    std::int64_t appliedGeneration_ = 0;
    int refreshesUnderWay_ = 0;
    bool lastRefreshTimedOut_ = false;
    std::unordered_map<UUID, HeldAlert> held_; ///< alerts that could not be saved completely
    std::unordered_set<UUID> slow_;            ///< alerts whose upload timed out
    std::unordered_set<UUID> refused_; ///< alerts that the server refused; skipped until the next retry or catch-up
    Duration retryDelay_{};            ///< minimum wait before the next retry; zero after a success
    Task<void> retry_;                 ///< waiting retry; none when nothing is owed or a pass runs
    std::vector<Observation> observations_;
    std::optional<Task<void>> activeRefreshTask_;
    CoalescedPasses deletions_;
    CoalescedPasses catchUps_;
    TaskBag tasks_;
    WeakAnchor<MacAlertsService> anchor_{*this};
};

} // namespace sentrel
