#pragma once

#include "mac/windows/DrawnNode.hpp"

#include <functional>

/// A view that draws view trees with AppKit, and their attachments (toolbars, sheets and dialogs) at its window. A node
/// keeps its AppKit view as long as its identity and its kind stay. Offers the tree the keys that its views don't use.
/// Main thread.
@interface SentrelHostView : NSView <SentrelKeyReceiver> {
@public
    std::function<void()> escaped; ///< called for the escape key if the tree doesn't use it
}

/// Shows the tree from now on.
- (void)render:(sentrel::ui::View)content;

/// Visits the drawn nodes by their identities. No effect before the first tree.
- (void)visit:(const sentrel::mac::DrawnNode::Visit&)visitor;

/// Call when the window is on the screen: sheets and dialogs may begin.
- (void)windowDidAppear;

/// Call before the window ends: removes sheets, dialogs and all content.
- (void)endContent;
@end
