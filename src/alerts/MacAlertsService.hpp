#pragma once

#include "alerts/AlertOutbox.hpp"
#include "alerts/AlertRows.hpp"
#include "runtime/Weak.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace sentrel {

namespace ports {
class Calendar;
class Language;
class WallClock;
} // namespace ports

/// The list of alerts that the user sees: those in the cloud and those on this Mac, merged. Its outbox does what iCloud
/// is still owed. Main actor only. All objects it refers to must outlive it.
class MacAlertsService final : private OutboxList {
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

    /// Shows an alert that has just been saved on this Mac; no effect when it is shown already or has been deleted.
    void merge(const StoredAlert& stored);

    /// Shows an alert that could not be saved completely on this Mac, and keeps it in the outbox.
    void hold(const AlertEvent& alert, std::optional<Bytes> photo);

    /// As the outbox's.
    void noteAttempt(const UUID& id, AlertUploader::Outcome outcome) { outbox_.noteAttempt(id, outcome); }
    [[nodiscard]] Async<void> catchUp() { return outbox_.catchUp(); }
    void catchUpIfOwed() { outbox_.catchUpIfOwed(); }
    [[nodiscard]] const PendingCloudDeletionStore& pendingDeletions() const { return outbox_.pendingDeletions(); }

    /// Call when another user has signed in to iCloud: hides the previous user's cloud alerts.
    void userDidChange() override;

    /// Recomputes `infoMessage`.
    void refreshStorageNotice();

    /// Updates the list from the cloud, within 15 s; within 120 s for the first list or after a refresh that timed out.
    /// An older refresh never overwrites the results of a newer one. Never throws, but for a `CancellationError`, and
    /// then has changed nothing.
    [[nodiscard]] Async<void> refresh() override;

    /// Starts a refresh and cancels the one that an earlier call started.
    void startRefresh();

    /// Deletes alerts here at once and in the cloud as soon as possible.
    void deleteAlerts(const std::unordered_set<UUID>& ids);

    /// The alert's photo, from this Mac or from the cloud; none when it is missing or can't be fetched.
    [[nodiscard]] Async<std::optional<Bytes>> photo(UUID id);

private:
    /// The cloud's answer to a refresh.
    struct CloudAnswer {
        bool isFresh = false; ///< the database itself has answered
        std::optional<std::string> error;
    };
    class Loading;

    Async<void> refreshOnce();
    Async<CloudAnswer> askCloud();
    [[nodiscard]] Duration longestRefresh() const;
    void apply(const CloudAnswer& answer, std::vector<StoredAlert> local);
    [[nodiscard]] std::optional<std::string> storageNotice();

    [[nodiscard]] bool isLoaded() const override { return hasLoadedInitialAlerts; }
    [[nodiscard]] bool isRefreshOwed() const override { return isRefreshOwed_; }
    void subtractThoseInCloud(std::unordered_set<UUID>& ids) const override;
    void attemptEnded(const UUID& id, AlertUploader::Outcome outcome) override;
    void deletionsFailed() override { errorMessage = cloud_.lastSyncError.get(); }
    void passEnded() override { uploadsCaughtUp_(); }

    MainActor actor_;
    CloudKitService& cloud_;
    const std::function<void()> uploadsCaughtUp_;
    Ports ports_;
    std::int64_t refreshGeneration_ = 0;
    std::int64_t appliedGeneration_ = 0;
    int refreshesUnderWay_ = 0;
    bool lastRefreshTimedOut_ = false;
    bool isRefreshOwed_ = true;
    std::vector<Observation> observations_;
    std::optional<Task<void>> activeRefreshTask_;

    AlertOutbox outbox_;
    AlertRows rows_;
    TaskBag tasks_;
    WeakAnchor<MacAlertsService> anchor_{*this};
};

} // namespace sentrel
