#pragma once

#include "alerts/AlertRow.hpp"

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sentrel {

/// Finds rows by identifier in a list that is in order, without looking through it: it may hold thousands. Its owner
/// changes list and index together.
class AlertRowIndex {
public:
    [[nodiscard]] std::size_t size() const { return dates_.size(); }
    [[nodiscard]] bool contains(const UUID& id) const { return dates_.contains(id); }

    /// The row's place in the list.
    [[nodiscard]] std::optional<std::size_t> place(const std::vector<AlertRow>& rows, const UUID& id) const;

    /// The identifiers of the rows whose alerts are on this Mac.
    [[nodiscard]] const std::unordered_set<UUID>& here() const { return here_; }
    [[nodiscard]] bool isInCloud(const UUID& id) const { return contains(id) && !here_.contains(id); }

    /// Call for each row that is new or has changed, and for those that have gone.
    void note(const AlertRow& row);
    void forget(const UUID& id);
    void rebuild(const std::vector<AlertRow>& rows);

private:
    std::unordered_map<UUID, Date> dates_;
    std::unordered_set<UUID> here_;
};

} // namespace sentrel
