#include "ui/ListRows.hpp"

#include "ui/Node.hpp"

#include <unordered_set>

namespace sentrel::ui {

namespace {

void addSection(std::vector<ListRow>& rows, const View& view, const std::string& step, bool isEnabled)
{
    const auto* const section = elementOf<Section>(view);
    // Steps contain no slash, so that no row has such an identity.
    if (section != nullptr && !section->header.empty()) {
        rows.push_back({ListRow::Kind::header, step + "//header", &view, isEnabled});
    }
    for (std::size_t index = 0; index < view.children.size(); ++index) {
        const View& row = view.children[index];
        if (!row.traits.isHidden) {
            rows.push_back({ListRow::Kind::row, identityInside(step, stepOf(row, index)), &row,
                            isEnabled && !row.traits.isDisabled});
        }
    }
    if (section != nullptr && !section->footer.empty()) {
        rows.push_back({ListRow::Kind::footer, step + "//footer", &view, isEnabled});
    }
}

std::unordered_set<std::string_view> identitiesOf(const std::vector<ListRow>& rows)
{
    std::unordered_set<std::string_view> identities;
    identities.reserve(rows.size());
    for (const ListRow& row : rows) {
        identities.insert(row.identity);
    }
    return identities;
}

/// Indexes of the rows that the other list doesn't have.
std::vector<std::size_t> placesMissingIn(const std::unordered_set<std::string_view>& others,
                                         const std::vector<ListRow>& rows)
{
    std::vector<std::size_t> places;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        if (!others.contains(rows[index].identity)) {
            places.push_back(index);
        }
    }
    return places;
}

/// Whether the rows that both lists have stand in the same order.
bool keepsOrder(const std::vector<ListRow>& before, const std::vector<ListRow>& now, const RowChanges& changes)
{
    std::size_t old = 0;
    std::size_t removed = 0;
    std::size_t inserted = 0;
    for (std::size_t index = 0; index < now.size(); ++index) {
        if (inserted < changes.inserted.size() && changes.inserted[inserted] == index) {
            ++inserted;
            continue;
        }
        while (removed < changes.removed.size() && changes.removed[removed] == old) {
            ++removed;
            ++old;
        }
        if (old >= before.size() || before[old].identity != now[index].identity) {
            return false;
        }
        ++old;
    }
    return true;
}

} // namespace

std::vector<ListRow> rowsOf(const View& list)
{
    std::vector<ListRow> rows;
    for (std::size_t index = 0; index < list.children.size(); ++index) {
        const View& section = list.children[index];
        if (!section.traits.isHidden) {
            addSection(rows, section, stepOf(section, index), !section.traits.isDisabled);
        }
    }
    return rows;
}

std::set<std::string> selectedIds(const std::vector<ListRow>& rows, const std::vector<std::size_t>& indexes)
{
    std::set<std::string> ids;
    for (const std::size_t index : indexes) {
        if (index < rows.size() && rows[index].kind == ListRow::Kind::row && !rows[index].view->traits.id.empty()) {
            ids.insert(rows[index].view->traits.id);
        }
    }
    return ids;
}

RowChanges changesBetween(const std::vector<ListRow>& before, const std::vector<ListRow>& now)
{
    RowChanges changes;
    changes.removed = placesMissingIn(identitiesOf(now), before);
    changes.inserted = placesMissingIn(identitiesOf(before), now);
    changes.isReordered = !keepsOrder(before, now, changes);
    return changes;
}

} // namespace sentrel::ui
