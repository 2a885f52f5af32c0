#pragma once

#include "ui/View.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace sentrel::ui {

/// One row of a list as a table shows it: a section's header or footer, or a row of it.
struct ListRow {
    enum class Kind { header, row, footer };
    Kind kind = Kind::row;
    std::string identity;       ///< unique in the list, stable while the row stays
    const View* view = nullptr; ///< the section of a header or a footer, else the row; in the list that was walked
    bool isEnabled = true;
};

/// All rows that are not hidden, from top to bottom. Empty headers and footers have no row.
[[nodiscard]] std::vector<ListRow> rowsOf(const View& list);

/// The ids of the rows at these places, without headers and footers; for a selection.
[[nodiscard]] std::set<std::string> selectedIds(const std::vector<ListRow>& rows,
                                                const std::vector<std::size_t>& indexes);

/// The changes from one list of rows to another; common rows are left alone.
struct RowChanges {
    std::vector<std::size_t> removed;  ///< places before, ascending
    std::vector<std::size_t> inserted; ///< places afterwards, ascending
    bool isReordered = false;          ///< common rows changed order, which the above can't express
};

[[nodiscard]] RowChanges changesBetween(const std::vector<ListRow>& before, const std::vector<ListRow>& now);

} // namespace sentrel::ui
