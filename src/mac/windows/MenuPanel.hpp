#pragma once

#include "mac/windows/HostView.hpp"

/// A window used as a menu: opens below its item in the menu bar, and closes when the user turns to something else.
/// Main thread.
@interface SentrelMenuPanel : NSPanel {
@public
    SentrelHostView* host;
}
- (instancetype)initForButton:(NSStatusBarButton*)button;
- (void)open;
- (void)dismiss;

/// Whether it closed a moment ago: a click on the item that has closed the menu must not reopen it.
- (BOOL)wasJustDismissed;

/// Fits size and place to the content; call after a change.
- (void)fit;
@end
