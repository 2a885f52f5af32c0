#include "mac/windows/Windows.hpp"

#import <AppKit/AppKit.h>

#include <initializer_list>

/// Hides and ends the application, except while the screen is shielded: the keys and the menu work behind a shield,
/// too.
@interface SentrelApplicationCommands : NSObject <NSMenuItemValidation>
@end

@implementation SentrelApplicationCommands

- (void)hide:(id)sender
{
    [NSApp hide:sender];
}

- (void)terminate:(id)sender
{
    [NSApp terminate:sender];
}

- (BOOL)validateMenuItem:(NSMenuItem*)menuItem
{
    return !sentrel::mac::isScreenShielded();
}

@end

namespace sentrel::mac {

namespace {

struct Command {
    NSString* title; ///< nil: a separator
    SEL action;
    NSString* key;
    NSEventModifierFlags more = NSEventModifierFlags{}; ///< besides the command key
};

NSString* localized(NSString* title)
{
    return [NSBundle.mainBundle localizedStringForKey:title value:title table:nil];
}

/// A command's target; nil: the first responder.
id targetOf(SEL action)
{
    static SentrelApplicationCommands* const commands = [[SentrelApplicationCommands alloc] init];
    return action == @selector(hide:) || action == @selector(terminate:) ? commands : nil;
}

void addMenu(NSMenu* bar, NSString* title, std::initializer_list<Command> commands)
{
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:title];
    for (const Command& command : commands) {
        if (command.title == nil) {
            [menu addItem:NSMenuItem.separatorItem];
            continue;
        }
        NSMenuItem* const item = [menu addItemWithTitle:localized(command.title)
                                                 action:command.action
                                          keyEquivalent:command.key];
        item.target = targetOf(command.action);
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

} // namespace sentrel::mac
