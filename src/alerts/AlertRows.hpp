#pragma once

#include "alerts/AlertRow.hpp"
#include "alerts/AlertRowIndex.hpp"
#include "cloud/AlertMetadataCache.hpp"
#include "runtime/Observable.hpp"

#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace sentrel {

class AlertOutbox;
class CloudKitService;

/// The rows of the list: the cloud's alerts that the user has not deleted, merged with those on this Mac. Main actor
/// only.
///
/// The list may hold thousands of rows, and each new alert has it refreshed. A refresh therefore looks only at the
/// alerts on this Mac and at those whose row may have changed since the last one. It makes the list anew when the cloud
/// becomes available or its user changes.
class AlertRows {
public:
    /// Each new list is published to `published`, which nobody else changes.
    AlertRows(Observable<AlertList>& published, CloudKitService& cloud, const AlertOutbox& outbox);
    AlertRows(const AlertRows&) = delete;

    [[nodiscard]] bool contains(const UUID& id) const { return index_.contains(id); }

    /// Whether the alert is shown as the cloud's, and whether any is.
    [[nodiscard]] bool isInCloud(const UUID& id) const { return index_.isInCloud(id); }
    [[nodiscard]] bool isAnyInCloud() const { return index_.size() > index_.here().size(); }

    /// Brings the rows up to date with the cloud's cached alerts, while the cloud is available, and with those on this
    /// Mac. Returns the alerts on this Mac that the cloud holds too; their rows are the cloud's.
    std::unordered_set<UUID> refresh(std::vector<StoredAlert> local);

    /// Shows only these alerts, until the next refresh.
    void startOver(std::vector<StoredAlert> local);

    /// Adds a row. None of the same alert is there.
    void add(AlertRow row);

    /// Removes the rows of these alerts, as far as they are there.
    void remove(const std::unordered_set<UUID>& ids);

    /// Shows the alert as the cloud's, if it is there.
    void moveToCloud(const UUID& id);

private:
    /// A row's new content; none for one that goes.
    struct Change {
        UUID id;
        std::optional<AlertRow> row;
    };

    std::unordered_set<UUID> makeAll(std::vector<StoredAlert> local);
    std::unordered_set<UUID> update(const std::vector<StoredAlert>& local);
    [[nodiscard]] const AlertRow* find(const UUID& id) const;
    [[nodiscard]] const AlertEvent* visibleCloudAlert(const UUID& id);
    void publish(std::vector<AlertRow> rows);
    void change(const std::vector<Change>& changes);
    [[nodiscard]] std::vector<AlertRow> takeRows();

    Observable<AlertList>& published_;
    CloudKitService& cloud_;
    const AlertOutbox& outbox_;
    AlertRowIndex index_;
    /// The changes of the cloud's alerts since the last refresh; null if the list must be made anew.
    std::shared_ptr<const AlertMetadataCache::Changes> cloudChanges_;
    std::unordered_set<UUID> changedHere_; ///< rows changed by anything but a refresh since the last one
    std::unordered_set<UUID> hidden_;      ///< the cloud's alerts that the user has deleted
};

} // namespace sentrel
