#include "alerts/AlertMerge.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sentrel {

namespace {

/// A total order, since decoders admit only finite dates.
template <class Dated> bool isNewerAlert(const Dated& left, const Dated& right)
{
    if (left.timestamp != right.timestamp) {
        return left.timestamp > right.timestamp;
    }
    return left.id < right.id;
}

bool isNewerRow(const AlertRow& left, const AlertRow& right)
{
    return isNewerAlert(left.alert, right.alert);
}

/// Sorts what decides, and then moves each row once: a row is four times as large, and sorting moves each many times.
std::vector<AlertRow> newestFirst(std::vector<AlertRow> rows)
{
    struct Place {
        Date timestamp;
        UUID id;
        std::size_t row = 0;
    };
    std::vector<Place> places;
    places.reserve(rows.size());
    for (const AlertRow& row : rows) {
        places.push_back({row.alert.timestamp, row.alert.id, places.size()});
    }
    std::ranges::sort(places, isNewerAlert<Place>);
    std::vector<AlertRow> sorted;
    sorted.reserve(rows.size());
    for (const Place& place : places) {
        sorted.push_back(std::move(rows[place.row]));
    }
    return sorted;
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
    rows = newestFirst(std::move(rows));
    return merged;
}

std::size_t placeInOrder(const std::vector<AlertRow>& rows, Date timestamp, const UUID& id)
{
    struct Place {
        Date timestamp;
        UUID id;
    };
    const auto isNewer = [](const AlertRow& row, const Place& place) {
        return row.alert.timestamp != place.timestamp ? row.alert.timestamp > place.timestamp : row.alert.id < place.id;
    };
    return static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), Place{timestamp, id}, isNewer) -
                                    rows.begin());
}

void insertInOrder(std::vector<AlertRow>& rows, std::vector<AlertRow> more)
{
    if (more.empty()) {
        return; // the merge below moves every row
    }
    if (more.size() == 1) {
        const std::size_t place = placeInOrder(rows, more[0].alert.timestamp, more[0].alert.id);
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(place), std::move(more[0]));
        return;
    }
    more = newestFirst(std::move(more));
    std::vector<AlertRow> merged;
    merged.reserve(rows.size() + more.size());
    std::ranges::merge(std::move_iterator{rows.begin()}, std::move_sentinel{rows.end()},
                       std::move_iterator{more.begin()}, std::move_sentinel{more.end()}, std::back_inserter(merged),
                       isNewerRow);
    rows = std::move(merged);
}

} // namespace sentrel
