#pragma once

#include "mac/windows/HostView.hpp"

/// A menu in the style of a window: hangs below its item in the menu bar, and closes when the person turns to something
/// else. Main thread.
@interface SentrelMenuPanel : NSPanel {
@public
    SentrelHostView* host;
}
- (instancetype)initForButton:(NSStatusBarButton*)button;
- (void)open;
- (void)dismiss;

/// Whether it closed a moment ago: the click that has closed it may also be the item's own, and must not open it again.
- (BOOL)wasJustDismissed;

/// As large as its content, at its place; after the content has changed.
- (void)fit;
@end
