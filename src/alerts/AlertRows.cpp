#include "alerts/AlertRows.hpp"

#include "alerts/AlertMerge.hpp"
#include "alerts/AlertOutbox.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace sentrel {

AlertRows::AlertRows(Observable<AlertList>& published, CloudKitService& cloud, const AlertOutbox& outbox)
    : published_(published), cloud_(cloud), outbox_(outbox)
{
}

std::unordered_set<UUID> AlertRows::refresh(std::vector<StoredAlert> local)
{
    const bool isUpdate = cloud_.isAvailable && cloudChanges_ != nullptr && !cloudChanges_->isAnotherUser;
    return isUpdate ? update(local) : makeAll(std::move(local));
}

void AlertRows::startOver(std::vector<StoredAlert> local)
{
    cloudChanges_ = nullptr;
    publish(mergedAlerts({}, std::move(local)).rows);
}

void AlertRows::add(AlertRow row)
{
    const UUID id = row.alert.id;
    change({{id, std::move(row)}});
}

void AlertRows::remove(const std::unordered_set<UUID>& ids)
{
    std::vector<Change> changes;
    for (const UUID& id : ids) {
        if (index_.contains(id)) {
            changes.push_back({id, std::nullopt});
        }
    }
    change(changes);
}

void AlertRows::moveToCloud(const UUID& id)
{
    const AlertRow* const row = find(id);
    if (row != nullptr && !index_.isInCloud(id)) {
        change({{id, AlertRow{row->alert, AlertStorageLocation::cloud}}});
    }
}

std::unordered_set<UUID> AlertRows::makeAll(std::vector<StoredAlert> local)
{
    std::vector<AlertEvent> remote;
    hidden_.clear();
    changedHere_.clear();
    cloudChanges_ = nullptr;
    if (cloud_.isAvailable) {
        remote = cloud_.cachedAlerts();
        cloudChanges_ = cloud_.watchCachedAlerts();
    }
    std::erase_if(remote, [this](const AlertEvent& alert) { return visibleCloudAlert(alert.id) == nullptr; });
    MergedAlerts merged = mergedAlerts(std::move(remote), std::move(local));
    publish(std::move(merged.rows));
    return std::move(merged.redundant);
}

/// As `makeAll`, but looks only at the alerts that may have changed.
std::unordered_set<UUID> AlertRows::update(const std::vector<StoredAlert>& local)
{
    std::unordered_map<UUID, const StoredAlert*> stored;
    std::unordered_set<UUID> suspects = std::exchange(changedHere_, {});
    for (const StoredAlert& each : local) {
        stored.emplace(each.alert.id, &each);
        suspects.insert(each.alert.id);
    }
    const auto changesInCloud = std::exchange(cloudChanges_, cloud_.watchCachedAlerts());
    const std::unordered_set<UUID>& hidden = hidden_;
    for (const auto* const ids : {&changesInCloud->ids, &changesInCloud->photos, &hidden, &index_.here()}) {
        suspects.insert(ids->begin(), ids->end());
    }
    std::unordered_set<UUID> redundant;
    std::vector<Change> changes;
    for (const UUID& id : suspects) {
        const AlertEvent* const inCloud = visibleCloudAlert(id);
        const auto here = stored.find(id);
        std::optional<AlertRow> row;
        if (inCloud != nullptr) {
            row = {*inCloud, AlertStorageLocation::cloud};
        } else if (here != stored.end()) {
            row = {here->second->alert, locationOf(*here->second)};
        }
        if (inCloud != nullptr && here != stored.end()) {
            redundant.insert(id);
        }
        const AlertRow* const shown = find(id);
        const bool isSame = shown != nullptr ? row == *shown : !row;
        if (!isSame) {
            changes.push_back({id, std::move(row)});
        }
    }
    change(changes);
    changedHere_.clear();
    return redundant;
}

const AlertRow* AlertRows::find(const UUID& id) const
{
    const std::vector<AlertRow>& rows = *published_.get();
    const auto place = index_.place(rows, id);
    return place ? &rows[*place] : nullptr;
}

/// The cloud's alert unless the user has deleted it, which is noted in `hidden_`.
const AlertEvent* AlertRows::visibleCloudAlert(const UUID& id)
{
    const AlertEvent* const alert = cloud_.cachedAlert(id);
    if (alert == nullptr || !outbox_.hides(id)) {
        hidden_.erase(id);
        return alert;
    }
    hidden_.insert(id);
    return nullptr;
}

void AlertRows::publish(std::vector<AlertRow> rows)
{
    if (*published_.get() != rows) {
        index_.rebuild(rows);
        published_ = std::make_shared<std::vector<AlertRow>>(std::move(rows));
    }
}

/// Changes some rows, each at most once, and publishes the list.
void AlertRows::change(const std::vector<Change>& changes)
{
    if (changes.empty()) {
        return;
    }
    std::vector<AlertRow> rows = takeRows();
    // One after another would move the others each time.
    std::unordered_set<UUID> leaving;
    for (const auto& [id, row] : changes) {
        changedHere_.insert(id);
        const auto place = index_.place(rows, id);
        if (place && row && rows[*place].alert.timestamp == row->alert.timestamp) {
            rows[*place] = *row;
        } else if (place) {
            leaving.insert(id);
        }
    }
    if (!leaving.empty()) {
        std::erase_if(rows, [&leaving](const AlertRow& row) { return leaving.contains(row.alert.id); });
    }
    std::vector<AlertRow> arriving;
    for (const auto& [id, row] : changes) {
        const bool isNew = row && (leaving.contains(id) || !index_.contains(id));
        if (isNew) {
            arriving.push_back(*row);
        }
        if (row) {
            index_.note(*row);
        } else {
            index_.forget(id);
        }
    }
    insertInOrder(rows, std::move(arriving));
    published_ = std::make_shared<std::vector<AlertRow>>(std::move(rows));
}

/// The rows, for a change that is then published: moved out of a list that no view holds, else copied. Every alert
/// would otherwise copy thousands of others.
std::vector<AlertRow> AlertRows::takeRows()
{
    const AlertList& list = published_.get();
    if (list.use_count() > 1) {
        return *list;
    }
    return std::move(*std::const_pointer_cast<std::vector<AlertRow>>(list));
}

} // namespace sentrel
