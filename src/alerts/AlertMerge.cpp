#include "alerts/AlertMerge.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace sentrel {

namespace {

/// What the order depends on, apart from the alert with its texts: moving this about is cheap.
struct Place {
    double date;
    UUID id;
    std::size_t index; ///< among the cloud's alerts, and behind them among the local ones

    static Place of(const AlertEvent& alert, std::size_t index)
    {
        const double date = alert.timestamp.secondsSinceReferenceDate;
        // No number would come before and after everything: it counts as the oldest of all.
        return {std::isnan(date) ? -std::numeric_limits<double>::infinity() : date, alert.id, index};
    }

    friend bool operator<(const Place& left, const Place& right)
    {
        return left.date != right.date ? left.date > right.date : left.id < right.id;
    }
};

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

std::vector<Place> placesInOrder(const std::vector<AlertEvent>& cloud, const std::vector<StoredAlert>& local,
                                 const std::unordered_set<UUID>& redundant)
{
    std::vector<Place> places;
    places.reserve(cloud.size() + local.size());
    for (const AlertEvent& alert : cloud) {
        places.push_back(Place::of(alert, places.size()));
    }
    for (std::size_t i = 0; i < local.size(); ++i) {
        if (!redundant.contains(local[i].alert.id)) {
            places.push_back(Place::of(local[i].alert, cloud.size() + i));
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

} // namespace

MergedAlerts mergedAlerts(std::vector<AlertEvent> cloud, std::vector<StoredAlert> local)
{
    MergedAlerts merged;
    merged.redundant = heldByBoth(cloud, local);
    const std::vector<Place> places = placesInOrder(cloud, local, merged.redundant);
    merged.rows.reserve(places.size());
    for (const Place& place : places) {
        AlertRow& row = merged.rows.emplace_back();
        if (place.index < cloud.size()) {
            row.alert = std::move(cloud[place.index]);
        } else {
            StoredAlert& stored = local[place.index - cloud.size()];
            row.alert = std::move(stored.alert);
            row.storageLocation = locationOf(stored);
        }
    }
    return merged;
}

void insertInOrder(std::vector<AlertRow>& rows, AlertRow row)
{
    const Place place = Place::of(row.alert, 0);
    const auto next = std::partition_point(
        rows.begin(), rows.end(), [&place](const AlertRow& other) { return Place::of(other.alert, 0) < place; });
    rows.insert(next, std::move(row));
}

} // namespace sentrel
