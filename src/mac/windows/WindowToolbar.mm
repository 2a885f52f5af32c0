#include "mac/windows/WindowAttachments.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/DrawnNode.hpp"
#include "ui/Node.hpp"

#include <map>
#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

namespace {

/// One item: a button has a target, any other view is drawn.
struct Item {
    NSToolbarItem* item = nil;
    SentrelNodeTarget* target = nil;
    std::optional<ui::Image> image; ///< of a button
    std::unique_ptr<DrawnNode> drawn;
};

} // namespace

/// Supplies the items of a toolbar.
@interface SentrelToolbarDelegate : NSObject <NSToolbarDelegate> {
@public
    std::map<std::string, Item> items; ///< by identity
    NSArray<NSString*>* order;
}
@end

@implementation SentrelToolbarDelegate

- (NSArray<NSString*>*)toolbarDefaultItemIdentifiers:(NSToolbar*)toolbar
{
    // All are inserted by identifier; defaults would be duplicates.
    return @[];
}

- (NSArray<NSString*>*)toolbarAllowedItemIdentifiers:(NSToolbar*)toolbar
{
    return order;
}

- (NSToolbarItem*)toolbar:(NSToolbar*)toolbar
        itemForItemIdentifier:(NSString*)itemIdentifier
    willBeInsertedIntoToolbar:(BOOL)flag
{
    const auto found = items.find(textOf(itemIdentifier));
    return found == items.end() ? nil : found->second.item;
}

@end

namespace sentrel::mac {

WindowToolbar::WindowToolbar()
    : toolbar_([[NSToolbar alloc] initWithIdentifier:NSUUID.UUID.UUIDString]),
      delegate_([[SentrelToolbarDelegate alloc] init])
{
    delegate_->order = @[];
    // The identifier is unique: AppKit keeps toolbars with equal ones in step, but each follows its own tree.
    toolbar_.delegate = delegate_;
    toolbar_.displayMode = NSToolbarDisplayModeIconOnly;
    toolbar_.allowsUserCustomization = NO;
    toolbar_.autosavesConfiguration = NO;
}

void WindowToolbar::show(NSWindow* window, const std::vector<ui::Attachment>& toolbars)
{
    auto before = std::exchange(delegate_->items, {});
    NSMutableArray<NSString*>* const order = [NSMutableArray array];
    for (const ui::Attachment& toolbar : toolbars) {
        for (std::size_t index = 0; index < toolbar.view->children.size(); ++index) {
            const ui::View& child = toolbar.view->children[index];
            if (child.traits.isHidden) {
                continue;
            }
            if (ui::elementOf<ui::Spacer>(child) != nullptr) {
                [order addObject:NSToolbarFlexibleSpaceItemIdentifier];
                continue;
            }
            std::string identity = ui::identityInside(toolbar.identity, ui::stepOf(child, index));
            if (ui::elementOf<ui::Button>(child) == nullptr) {
                identity += "//view"; // a view that becomes a button is another item
            }
            delegate_->items[identity] = std::move(before[identity]);
            showItem(identity, child, toolbar.isEnabled && !child.traits.isDisabled);
            [order addObject:stringObject(identity)];
        }
    }
    delegate_->order = order;
    NSToolbar* const wanted = toolbars.empty() ? nil : toolbar_;
    if (window != nil && window.toolbar != wanted) {
        window.toolbar = wanted;
        window.toolbarStyle = NSWindowToolbarStyleUnified;
    }
    arrange();
}

void WindowToolbar::showItem(const std::string& identity, const ui::View& view, bool isEnabled)
{
    Item& item = delegate_->items[identity];
    const auto* const button = ui::elementOf<ui::Button>(view);
    if (item.item == nil) {
        item.item = [[NSToolbarItem alloc] initWithItemIdentifier:stringObject(identity)];
        item.item.autovalidates = NO;
    }
    if (button == nullptr) {
        Surroundings surroundings;
        surroundings.isEnabled = isEnabled;
        surroundings.isInRow = true;
        item.drawn = DrawnNode::draw(std::move(item.drawn), view, identity, surroundings);
        item.item.view = item.drawn->outer();
        return;
    }
    if (item.target == nil) {
        item.target = [[SentrelNodeTarget alloc] init];
        item.item.target = item.target;
        item.item.action = @selector(pressed:);
        item.item.bordered = YES;
    }
    item.target->node.element = view.element;
    const std::string& spoken = view.traits.accessibilityLabel.empty() ? button->title : view.traits.accessibilityLabel;
    item.item.label = stringObject(spoken);
    item.item.paletteLabel = item.item.label;
    item.item.toolTip = stringObject(view.traits.help.empty() ? spoken : view.traits.help);
    if (item.image != button->image) {
        item.image = button->image;
        item.item.image = button->image ? imageOf(*button->image, spoken) : nil;
    }
    if (item.item.image == nil) {
        item.item.title = stringObject(button->title);
    }
    item.item.enabled = isEnabled;
}

/// Leaves items in place as far as their order allows.
void WindowToolbar::arrange()
{
    NSArray<NSString*>* const order = delegate_->order;
    for (NSUInteger index = 0; index < order.count; ++index) {
        const bool isThere = index < toolbar_.items.count && [toolbar_.items[index].itemIdentifier
                                                                 isEqualToString:order[index]];
        if (isThere) {
            continue;
        }
        for (NSUInteger later = index; later < toolbar_.items.count; ++later) {
            if ([toolbar_.items[later].itemIdentifier isEqualToString:order[index]]) {
                [toolbar_ removeItemAtIndex:static_cast<NSInteger>(later)];
                break;
            }
        }
        [toolbar_ insertItemWithItemIdentifier:order[index] atIndex:static_cast<NSInteger>(index)];
    }
    while (toolbar_.items.count > order.count) {
        [toolbar_ removeItemAtIndex:static_cast<NSInteger>(toolbar_.items.count) - 1];
    }
}

} // namespace sentrel::mac
