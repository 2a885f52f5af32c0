#include "platform/macos/MainMenu.hpp"

#include <initializer_list>

namespace sentrel::macos {

namespace {

struct Command {
    NSString* title; ///< nil: a line between groups
    SEL action;
    NSString* key;
    NSEventModifierFlags more = NSEventModifierFlags{}; ///< besides the command key
};

NSString* localized(NSString* title)
{
    return [NSBundle.mainBundle localizedStringForKey:title value:title table:nil];
}

void addMenu(NSMenu* bar, NSString* title, std::initializer_list<Command> commands)
{
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:title];
    for (const Command& command : commands) {
        if (command.title == nil) {
            [menu addItem:NSMenuItem.separatorItem];
            continue;
        }
        // Without a target: whoever has the keyboard does it.
        NSMenuItem* const item = [menu addItemWithTitle:localized(command.title)
                                                 action:command.action
                                          keyEquivalent:command.key];
        item.keyEquivalentModifierMask = NSEventModifierFlagCommand | command.more;
    }
    NSMenuItem* const holder = [[NSMenuItem alloc] init];
    holder.submenu = menu;
    [bar addItem:holder];
}

} // namespace

NSMenu* makeMainMenu()
{
    NSMenu* const bar = [[NSMenu alloc] init];
    addMenu(bar, @"Sentrel",
            {
                {@"About Sentrel", @selector(orderFrontStandardAboutPanel:), @""},
                {nil, nullptr, @""},
                {@"Hide Sentrel", @selector(hide:), @"h"},
                {@"Hide Others", @selector(hideOtherApplications:), @"h", NSEventModifierFlagOption},
                {@"Show All", @selector(unhideAllApplications:), @""},
                {nil, nullptr, @""},
                {@"Quit Sentrel", @selector(terminate:), @"q"},
            });
    addMenu(bar, localized(@"Edit"),
            {
                {@"Undo", NSSelectorFromString(@"undo:"), @"z"},
                {@"Redo", NSSelectorFromString(@"redo:"), @"z", NSEventModifierFlagShift},
                {nil, nullptr, @""},
                {@"Cut", @selector(cut:), @"x"},
                {@"Copy", @selector(copy:), @"c"},
                {@"Paste", @selector(paste:), @"v"},
                {@"Select All", @selector(selectAll:), @"a"},
            });
    addMenu(bar, localized(@"Window"),
            {
                {@"Close", @selector(performClose:), @"w"},
                {@"Minimize", @selector(performMiniaturize:), @"m"},
            });
    return bar;
}

} // namespace sentrel::macos
