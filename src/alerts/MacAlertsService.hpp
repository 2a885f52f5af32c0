#pragma once

#include "alerts/AlertRow.hpp"
#include "alerts/AlertUploader.hpp"
#include "alerts/PendingCloudDeletionStore.hpp"
#include "alerts/StoredAlert.hpp"
#include "cloud/CloudKitService.hpp"

#include <functional>
#include <memory>

namespace sentrel {

class LocalAlertStore;

namespace platform {
class Calendar;
}

/// The list of alerts that the user sees: those in the cloud and those on this Mac, merged. Main actor only.
class MacAlertsService {
public:
    struct Ports {
        platform::UserDefaults& defaults;
        platform::WallClock& wallClock;
        platform::Calendar& calendar;
        platform::Language& language;
    };

    /// `uploadsCaughtUp` is called whenever alerts that waited may have been uploaded or deleted.
    MacAlertsService(MainActor actor, CloudKitService& cloud, LocalAlertStore& localStore, AlertUploader& uploader,
                     std::function<void()> uploadsCaughtUp, Ports ports);
    MacAlertsService(const MacAlertsService&) = delete;

    /// Newest first. Shared, so that a list of thousands is told without being copied; never null.
    Observable<std::shared_ptr<const std::vector<AlertRow>>> alerts;
    Observable<std::optional<std::string>> errorMessage;
    Observable<std::optional<std::string>> infoMessage;
    Observable<bool> isLoading;
    Observable<bool> hasLoadedInitialAlerts;
    Observable<bool> iCloudStorageIsFull;

    /// The rows by date, as of now.
    [[nodiscard]] std::vector<AlertSection> sections() const;

    [[nodiscard]] bool holds(const UUID& id) const;

    /// Shows an alert that has just been saved on this Mac.
    void merge(const StoredAlert& stored);

    /// Recomputes `infoMessage`.
    void refreshStorageNotice();

    /// Brings the list up to date. A refresh that begins later overtakes one that is under way: the older one ends
    /// without having changed the list. Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<void> refresh();

    /// Starts a refresh of its own.
    void startRefresh();

    /// Deletes alerts here at once and in the cloud as soon as possible.
    void deleteAlerts(const std::unordered_set<UUID>& ids);

    /// The alert's photo, from this Mac or from the cloud; none when there is none or it can't be had.
    [[nodiscard]] Async<std::optional<Bytes>> photo(UUID id);

    /// Does what waits for iCloud: deletions, then uploads, oldest first, one at a time; then refreshes. Ends at the
    /// first sign that iCloud is unavailable, throttling or full.
    [[nodiscard]] Async<void> catchUp();

    [[nodiscard]] const PendingCloudDeletionStore& pendingDeletions() const;
};

} // namespace sentrel
