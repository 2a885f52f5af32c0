#include "alerts/AlertRowIndex.hpp"

#include "alerts/AlertMerge.hpp"

#include <algorithm>

namespace sentrel {

std::optional<std::size_t> AlertRowIndex::place(const std::vector<AlertRow>& rows, const UUID& id) const
{
    const auto date = dates_.find(id);
    return date == dates_.end() ? std::nullopt : std::optional{placeInOrder(rows, date->second, id)};
}

void AlertRowIndex::note(const AlertRow& row)
{
    dates_.insert_or_assign(row.alert.id, row.alert.timestamp);
    if (row.storageLocation == AlertStorageLocation::cloud) {
        here_.erase(row.alert.id);
    } else {
        here_.insert(row.alert.id);
    }
}

void AlertRowIndex::forget(const UUID& id)
{
    dates_.erase(id);
    here_.erase(id);
}

void AlertRowIndex::rebuild(const std::vector<AlertRow>& rows)
{
    dates_.clear();
    here_.clear();
    dates_.reserve(rows.size());
    for (const AlertRow& row : rows) {
        note(row);
    }
}

} // namespace sentrel
