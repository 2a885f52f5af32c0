#include "ui/ListRows.hpp"
#include "ui/Attachments.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::ui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

View listOf(const std::vector<std::pair<std::string, std::vector<std::string>>>& sections)
{
    std::vector<View> views;
    for (const auto& [header, ids] : sections) {
        std::vector<View> rows;
        for (const std::string& id : ids) {
            rows.push_back(text(id).id(id));
        }
        views.push_back(section(header, std::move(rows)).id(header));
    }
    return view(List{List::Selection::multiple, {}}, std::move(views));
}

/// Does to the first rows what the changes say, as a table does: all removals, then the insertions from the top.
std::vector<std::string> applied(const std::vector<ListRow>& before, const std::vector<ListRow>& now)
{
    const RowChanges changes = changesBetween(before, now);
    std::vector<std::string> rows;
    for (std::size_t index = 0; index < before.size(); ++index) {
        if (std::ranges::count(changes.removed, index) == 0) {
            rows.push_back(before[index].identity);
        }
    }
    for (const std::size_t index : changes.inserted) {
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(index), now[index].identity);
    }
    return rows;
}

TEST(ListRows, AreHeadersAndRowsFromTopToBottomWithoutWhatIsHidden)
{
    View footed = view(Section{"", "That is all."}, {text("c").id("c"), text("d").id("d").hidden(true)});
    const View list = view(List{}, {section("Today", {text("a").id("a"), text("b")}), std::move(footed),
                                    section("Gone", {text("e")}).hidden(true)});

    std::vector<std::string> identities;
    const auto rows = rowsOf(list);
    for (const ListRow& row : rows) {
        identities.push_back(row.identity);
    }

    EXPECT_THAT(identities, ElementsAre("0//header", "0/a", "0/1", "1/c", "1//footer"));
    EXPECT_THAT(selectedIds(rows, {0, 1, 2, 3, 4, 99}), ElementsAre("a", "c")) << "what has no id can't be selected";
}

TEST(ListRows, BecomeOthersByRemovingAndInsertingUnlessTheyChangedPlaces)
{
    const View before = listOf({{"Today", {"a", "b", "c"}}, {"Earlier", {"d", "e"}}});
    const std::vector<View> later{
        before,     listOf({{"Today", {"new", "a", "c"}}, {"Earlier", {"d", "e"}}}), listOf({{"Earlier", {"e", "f"}}}),
        listOf({}), listOf({{"Now", {"x"}}, {"Today", {"a", "y", "b", "c", "z"}}}),
    };
    for (const View& now : later) {
        const auto rows = rowsOf(now);
        std::vector<std::string> wanted;
        for (const ListRow& row : rows) {
            wanted.push_back(row.identity);
        }
        EXPECT_FALSE(changesBetween(rowsOf(before), rows).isReordered);
        EXPECT_EQ(applied(rowsOf(before), rows), wanted);
        EXPECT_EQ(applied(rows, rowsOf(before)).size(), rowsOf(before).size());
    }
    const auto same = changesBetween(rowsOf(before), rowsOf(later[0]));
    EXPECT_THAT(same.removed, IsEmpty());
    EXPECT_THAT(same.inserted, IsEmpty());

    EXPECT_TRUE(changesBetween(rowsOf(before), rowsOf(listOf({{"Today", {"b", "a"}}}))).isReordered);
    EXPECT_TRUE(changesBetween(rowsOf(before), rowsOf(listOf({{"Earlier", {"d"}}, {"Today", {"c"}}}))).isReordered);
}

TEST(Attachments, AreFoundAtTheirPlacesButNotInsideEachOther)
{
    View sheet = view(Sheet{}, {text("Sure?").attach(view(Dialog{}))}).hidden(false);
    const View root =
        verticalStack({text("a").attach(std::move(sheet)).id("row").disabled(true),
                       text("b").attach(view(Dialog{}).hidden(true)), text("c").attach(view(Dialog{})).hidden(true)})
            .attach(view(Toolbar{}));

    const auto found = attachmentsOf(root);

    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].identity, "row/sheet");
    EXPECT_FALSE(found[0].isEnabled);
    EXPECT_EQ(found[1].identity, "toolbar");
    EXPECT_TRUE(found[1].isEnabled);
}

} // namespace
} // namespace sentrel::ui
