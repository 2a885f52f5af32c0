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

/// The list of alerts that the user sees: those in the cloud and those on this Mac, merged. Main actor only; it
/// outlives nothing that it refers to.
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
    Observable<bool> iCloudStorageIsFull; ///< the last upload that was tried failed for that

    /// The rows by date, as of now.
    [[nodiscard]] std::vector<AlertSection> sections() const;

    [[nodiscard]] bool holds(const UUID& id) const;

    /// Shows an alert that has just been saved on this Mac; nothing when it is shown already or has been deleted.
    void merge(const StoredAlert& stored);

    /// Takes in an alert of which something could not be saved on this Mac. It is shown, and waits in memory for the
    /// next catch-up to save or upload it whole.
    void hold(const AlertEvent& alert, std::optional<Bytes> photo);

    /// An attempt to upload the alert has ended. Nothing of an uploaded alert is kept here any more; any other waits
    /// from now on.
    void noteAttempt(const UUID& id, AlertUploader::Outcome outcome);

    /// Another user has signed in to iCloud: the list shows nothing of the former one's any more.
    void userDidChange();

    /// Recomputes `infoMessage`.
    void refreshStorageNotice();

    /// Brings the list up to date with the cloud, within 15 s; a long list that comes for the first time may take
    /// 120 s. Of refreshes that overlap, an older one never overwrites what a newer one has found. Never throws, but
    /// for a `CancellationError`, and then has changed nothing.
    [[nodiscard]] Async<void> refresh();

    /// Starts a refresh of its own, in place of the one that this started before.
    void startRefresh();

    /// Deletes alerts here at once and in the cloud as soon as possible.
    void deleteAlerts(const std::unordered_set<UUID>& ids);

    /// The alert's photo, from this Mac or from the cloud; none when there is none or it can't be had.
    [[nodiscard]] Async<std::optional<Bytes>> photo(UUID id);

    /// Does what waits for iCloud: deletions, then uploads, oldest first, one at a time; then refreshes. Uploads end
    /// at the first sign that iCloud is unavailable, throttled or full; an alert that the server refuses doesn't hold
    /// up those behind it. One pass at a time: a call during a pass asks for one more.
    [[nodiscard]] Async<void> catchUp();

    /// Call when iCloud is known to take uploads: starts a pass when something waits and none is under way. What a pass
    /// leaves waiting is tried again after 30 s, and then at growing intervals of at most 5 min.
    void catchUpIfOwed();

    [[nodiscard]] const PendingCloudDeletionStore& pendingDeletions() const { return pendingDeletions_; }

private:
    /// What a refresh has learnt from the cloud.
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
    std::unordered_map<UUID, HeldAlert> held_; ///< those that could not be saved whole
    std::unordered_set<UUID> slow_;            ///< whose upload took too long
    std::unordered_set<UUID> refused_;         ///< by the server; they wait for the next retry, or for better news
    Duration retryDelay_{}; ///< at least so long until the next retry; zero when none was made since the last success
    Task<void> retry_;      ///< waits; none when nothing is owed or a pass sees to it
    std::vector<Observation> observations_;
    std::optional<Task<void>> activeRefreshTask_;
    CoalescedPasses deletions_;
    CoalescedPasses catchUps_;
    TaskBag tasks_;
    WeakAnchor<MacAlertsService> anchor_{*this};
};

} // namespace sentrel
