#include "alerts/AlertMerge.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

/// A total order, since decoders admit only finite dates.
bool isNewerRow(const AlertRow& left, const AlertRow& right)
{
    if (left.alert.timestamp != right.alert.timestamp) {
        return left.alert.timestamp > right.alert.timestamp;
    }
    return left.alert.id < right.alert.id;
}

std::unordered_set<UUID> heldByBoth(const std::vector<AlertEvent>& cloud, const std::vector<StoredAlert>& local)
{
    std::unordered_set<UUID> both;
    if (cloud.empty() || local.empty()) {
        return both;
    }
    std::unordered_set<UUID> ids;
    ids.reserve(local.size());
    for (const StoredAlert& stored : local) {
        ids.insert(stored.alert.id);
    }
    for (const AlertEvent& alert : cloud) {
        if (ids.contains(alert.id)) {
            both.insert(alert.id);
        }
    }
    return both;
}

} // namespace

MergedAlerts mergedAlerts(std::vector<AlertEvent> cloud, std::vector<StoredAlert> local)
{
    MergedAlerts merged;
    merged.redundant = heldByBoth(cloud, local);
    std::vector<AlertRow>& rows = merged.rows;
    rows.reserve(cloud.size() + local.size());
    for (AlertEvent& alert : cloud) {
        rows.push_back({std::move(alert), AlertStorageLocation::cloud});
    }
    for (StoredAlert& stored : local) {
        if (!merged.redundant.contains(stored.alert.id)) {
            const AlertStorageLocation location = locationOf(stored);
            rows.push_back({std::move(stored.alert), location});
        }
    }
    std::ranges::sort(rows, isNewerRow);
    return merged;
}

void insertInOrder(std::vector<AlertRow>& rows, AlertRow row)
{
    const auto next = std::ranges::lower_bound(rows, row, isNewerRow);
    rows.insert(next, std::move(row));
}

} // namespace sentrel
