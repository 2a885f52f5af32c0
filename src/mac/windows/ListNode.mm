#include "mac/foundation/CallCopy.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/ListRows.hpp"
#include "ui/Node.hpp"

#include <utility>

// Lists: a table with a row for each header, row and footer, of which AppKit keeps only the visible ones.

using namespace sentrel;
using namespace sentrel::mac;

namespace {

constexpr double rowHeight = 36.0;
constexpr double rowInset = 4.0;

using Kind = ui::ListRow::Kind;

NSIndexSet* indexSet(const std::vector<std::size_t>& indexes)
{
    NSMutableIndexSet* const set = [NSMutableIndexSet indexSet];
    for (const std::size_t index : indexes) {
        [set addIndex:index];
    }
    return set;
}

std::vector<std::size_t> placesOf(NSIndexSet* set)
{
    std::vector<std::size_t> places;
    // A nil set would give index 0 for ever.
    if (set == nil) {
        return places;
    }
    for (NSUInteger index = set.firstIndex; index != NSNotFound; index = [set indexGreaterThanIndex:index]) {
        places.push_back(index);
    }
    return places;
}

/// The text of a header or a footer as a view.
ui::View captionOf(const ui::ListRow& row)
{
    const auto& section = *ui::elementOf<ui::Section>(*row.view);
    if (row.kind == Kind::header) {
        return ui::text(section.header, ui::Text::Style::headline, ui::Text::Color::secondary);
    }
    return ui::text(section.footer, ui::Text::Style::caption, ui::Text::Color::secondary);
}

void setBackground(NSView* view, NSBackgroundStyle style)
{
    if ([view isKindOfClass:NSControl.class]) {
        static_cast<NSCell*>(static_cast<NSControl*>(view).cell).backgroundStyle = style;
    }
    for (NSView* const inner in view.subviews) {
        setBackground(inner, style);
    }
}

} // namespace

/// The cell of a visible row. AppKit reuses it when the row scrolls away.
@interface SentrelRowCell : NSTableCellView {
@public
    std::unique_ptr<DrawnNode> drawn;
}
- (void)show:(const ui::View&)view in:(const Surroundings&)surroundings;
@end

@implementation SentrelRowCell

- (void)show:(const ui::View&)view in:(const Surroundings&)surroundings
{
    if (!DrawnNode::drawIn(self, drawn, view, "", surroundings)) {
        return;
    }
    NSView* const now = drawn->outer();
    setBackground(now, self.backgroundStyle);
    const bool isWide = drawn->expands(NSLayoutConstraintOrientationHorizontal);
    NSLayoutConstraint* const trailing =
        isWide ? [now.trailingAnchor constraintEqualToAnchor:self.trailingAnchor]
               : [now.trailingAnchor constraintLessThanOrEqualToAnchor:self.trailingAnchor];
    [NSLayoutConstraint activateConstraints:@[
        [now.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        trailing,
        [now.topAnchor constraintEqualToAnchor:self.topAnchor constant:rowInset],
        [now.bottomAnchor constraintEqualToAnchor:self.bottomAnchor constant:-rowInset],
    ]];
}

- (void)setBackgroundStyle:(NSBackgroundStyle)backgroundStyle
{
    [super setBackgroundStyle:backgroundStyle];
    // Texts at any depth must be readable on a selected row.
    if (drawn) {
        setBackground(drawn->outer(), backgroundStyle);
    }
}

@end

/// A table that reports when it gets or loses the keyboard.
@interface SentrelTableView : NSTableView {
@public
    __weak SentrelNodeTarget* focusTarget;
}
@end

@implementation SentrelTableView

- (void)keyDown:(NSEvent*)event
{
    // These keys belong to the tree, not to the table.
    if (keyOf(event)) {
        [self.nextResponder keyDown:event];
        return;
    }
    [super keyDown:event];
}

- (BOOL)becomeFirstResponder
{
    const BOOL accepted = [super becomeFirstResponder];
    if (accepted) {
        [focusTarget tellFocus:true];
    }
    return accepted;
}

- (BOOL)resignFirstResponder
{
    const BOOL accepted = [super resignFirstResponder];
    if (accepted) {
        [focusTarget tellFocus:false];
    }
    return accepted;
}

@end

/// The table's data source and delegate.
@interface SentrelListController : NSObject <NSTableViewDataSource, NSTableViewDelegate> {
@public
    std::vector<ui::ListRow> rows; ///< pointers into the tree that is shown
    Surroundings surroundings;
    ui::Binding<std::set<std::string>> selection;
    ui::List::Selection mode;
    BOOL isUpdating;      ///< the table changes because the tree did
    BOOL hasNewSelection; ///< the user's, not reported yet
    std::set<std::string> newSelection;
}
- (void)fill:(SentrelRowCell*)cell at:(NSInteger)row;
- (std::set<std::string>)selectedIn:(NSTableView*)table;
@end

@implementation SentrelListController

- (NSInteger)numberOfRowsInTableView:(NSTableView*)tableView
{
    return static_cast<NSInteger>(rows.size());
}

/// Null out of range: a table may ask for a row under removal.
- (const ui::ListRow*)rowAt:(NSInteger)row
{
    const auto index = static_cast<std::size_t>(row);
    return index < rows.size() ? &rows[index] : nullptr;
}

- (NSView*)tableView:(NSTableView*)tableView viewForTableColumn:(NSTableColumn*)tableColumn row:(NSInteger)row
{
    const ui::ListRow* const shown = [self rowAt:row];
    const bool isRow = shown != nullptr && shown->kind == Kind::row;
    NSString* const identifier = isRow ? @"row" : @"caption";
    const id reused = [tableView makeViewWithIdentifier:identifier owner:nil];
    SentrelRowCell* const cell = reused != nil ? reused : [[SentrelRowCell alloc] init];
    cell.identifier = identifier;
    [self fill:cell at:row];
    return cell;
}

- (void)fill:(SentrelRowCell*)cell at:(NSInteger)row
{
    const ui::ListRow* const shown = [self rowAt:row];
    if (shown == nullptr) {
        return;
    }
    Surroundings own = surroundings;
    own.isEnabled = own.isEnabled && shown->isEnabled;
    if (shown->kind == Kind::row) {
        [cell show:*shown->view in:own];
        return;
    }
    [cell show:captionOf(*shown) in:own];
}

- (BOOL)tableView:(NSTableView*)tableView isGroupRow:(NSInteger)row
{
    const ui::ListRow* const shown = [self rowAt:row];
    return shown != nullptr && shown->kind == Kind::header;
}

- (NSIndexSet*)tableView:(NSTableView*)tableView
    selectionIndexesForProposedSelection:(NSIndexSet*)proposedSelectionIndexes
{
    NSMutableIndexSet* const allowed = [NSMutableIndexSet indexSet];
    if (mode == ui::List::Selection::none) {
        return allowed;
    }
    for (const std::size_t index : placesOf(proposedSelectionIndexes)) {
        if (index < rows.size() && !ui::selectedIds(rows, {index}).empty()) {
            [allowed addIndex:index];
        }
    }
    return allowed;
}

- (void)tableViewSelectionDidChange:(NSNotification*)notification
{
    if (isUpdating) {
        return;
    }
    // Read now, while the rows are those that the user saw.
    newSelection = [self selectedIn:notification.object];
    if (hasNewSelection) {
        return;
    }
    hasNewSelection = YES;
    // Not from within the table's own event: the new tree may remove the table.
    __weak SentrelListController* const weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        [weakSelf tellSelection];
    });
}

- (void)tellSelection
{
    hasNewSelection = NO;
    const auto selected = std::exchange(newSelection, {});
    if (selected != selection.value) {
        callCopy(selection.set, selected); // the new tree brings another
    }
}

- (std::set<std::string>)selectedIn:(NSTableView*)table
{
    return ui::selectedIds(rows, placesOf(table.selectedRowIndexes));
}

@end

namespace {

class ListNode final : public DrawnNode {
public:
    ListNode() : DrawnNode([[NSScrollView alloc] init])
    {
        NSTableColumn* const column = [[NSTableColumn alloc] initWithIdentifier:@"rows"];
        column.resizingMask = NSTableColumnAutoresizingMask;
        [table_ addTableColumn:column];
        table_.columnAutoresizingStyle = NSTableViewUniformColumnAutoresizingStyle;
        table_.headerView = nil;
        table_.usesAutomaticRowHeights = YES;
        table_.rowHeight = rowHeight;
        table_.floatsGroupRows = YES;
        table_.allowsEmptySelection = YES;
        table_.allowsTypeSelect = NO;
        table_.dataSource = controller_; // the table retains neither this nor its delegate
        table_.delegate = controller_;
        table_->focusTarget = target();
        NSScrollView* const scroll = static_cast<NSScrollView*>(view());
        scroll.documentView = table_;
        scroll.hasVerticalScroller = YES;
        scroll.autohidesScrollers = YES;
        scroll.borderType = NSNoBorder;
    }
    ~ListNode() override
    {
        table_.dataSource = nil;
        table_.delegate = nil;
    }

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::List& list = *ui::elementOf<ui::List>(view);
        adopt(surroundings);
        controller_->mode = list.mode;
        controller_->selection = list.selection;
        table_.allowsMultipleSelection = list.mode == ui::List::Selection::multiple;
        table_.enabled = surroundings.isEnabled;
        controller_->isUpdating = YES;
        if (view.children.isSameAs(shown_) || showRows(ui::rowsOf(view))) {
            fillVisibleRows();
        }
        shown_ = view.children;
        if (!controller_->hasNewSelection) {
            showSelection(list.selection.value);
        }
        controller_->isUpdating = NO;
    }

    void adopt(const Surroundings& surroundings)
    {
        Surroundings inner;
        inner.isEnabled = surroundings.isEnabled;
        controller_->surroundings = inner;
        table_.style = surroundings.isInSidebar ? NSTableViewStyleSourceList : NSTableViewStyleInset;
        static_cast<NSScrollView*>(view()).drawsBackground = !surroundings.isInSidebar;
    }

    /// Remaining rows keep their place on the screen, their selection and their content. False if the table reloads.
    [[nodiscard]] bool showRows(std::vector<ui::ListRow> rows)
    {
        // Read before the rows change: the table counts them lazily.
        const auto counted = static_cast<std::size_t>(table_.numberOfRows);
        const auto before = std::exchange(controller_->rows, std::move(rows));
        const ui::RowChanges changes = ui::changesBetween(before, controller_->rows);
        if (changes.isReordered || before.empty() || counted != before.size()) {
            [table_ reloadData];
            return false;
        }
        if (!changes.removed.empty() || !changes.inserted.empty()) {
            [table_ beginUpdates];
            [table_ removeRowsAtIndexes:indexSet(changes.removed) withAnimation:NSTableViewAnimationEffectFade];
            [table_ insertRowsAtIndexes:indexSet(changes.inserted) withAnimation:NSTableViewAnimationEffectFade];
            [table_ endUpdates];
        }
        return true;
    }

    void fillVisibleRows()
    {
        SentrelListController* const controller = controller_;
        NSTableView* const table = table_;
        [table enumerateAvailableRowViewsUsingBlock:^(NSTableRowView*, NSInteger row) {
            // A row under removal has no index.
            const id cell = row < 0 ? nil : [table viewAtColumn:0 row:row makeIfNecessary:NO];
            if ([cell isKindOfClass:SentrelRowCell.class]) {
                [controller fill:cell at:row];
            }
        }];
    }

    void showSelection(const std::set<std::string>& wanted)
    {
        if ([controller_ selectedIn:table_] == wanted) {
            return;
        }
        NSMutableIndexSet* const indexes = [NSMutableIndexSet indexSet];
        for (std::size_t index = 0; index < controller_->rows.size(); ++index) {
            const ui::ListRow& row = controller_->rows[index];
            if (row.kind == Kind::row && wanted.contains(row.view->traits.id)) {
                [indexes addIndex:index];
            }
        }
        [table_ selectRowIndexes:indexes byExtendingSelection:NO];
    }

    [[nodiscard]] NSView* control() const override { return table_; }
    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation /*orientation*/) const override { return true; }

    ui::Children shown_; // held: the rows point into them
    SentrelTableView* const table_ = [[SentrelTableView alloc] init];
    SentrelListController* const controller_ = [[SentrelListController alloc] init];
};

} // namespace

std::unique_ptr<DrawnNode> sentrel::mac::makeNode(const ui::List& /*list*/)
{
    return std::make_unique<ListNode>();
}
