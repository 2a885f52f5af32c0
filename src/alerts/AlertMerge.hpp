#pragma once

#include "alerts/AlertRow.hpp"

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace sentrel {

/// The result of a merge.
struct MergedAlerts {
    std::vector<AlertRow> rows;         ///< newest first, and by identifier where dates are equal
    std::unordered_set<UUID> redundant; ///< local alerts that the cloud holds too; their rows are the cloud's
};

/// Merges the alerts of the cloud, in any order, with those on this Mac. No identifier occurs twice in either.
[[nodiscard]] MergedAlerts mergedAlerts(std::vector<AlertEvent> cloud, std::vector<StoredAlert> local);

/// The place of an alert in rows that are in order, or where it belongs.
[[nodiscard]] std::size_t placeInOrder(const std::vector<AlertRow>& rows, Date timestamp, const UUID& id);

/// Inserts rows into rows that are in order.
void insertInOrder(std::vector<AlertRow>& rows, std::vector<AlertRow> more);

} // namespace sentrel
