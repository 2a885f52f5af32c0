#pragma once

#include "mac/windows/NodeTarget.hpp"
#include "mac/windows/TreeRenderer.hpp"

#include <functional>
#include <memory>

/// A view that draws view trees, and gives them the keys that nothing in them has taken. Main thread.
@interface SentrelHostView : NSView <SentrelKeyReceiver> {
@public
    std::unique_ptr<sentrel::mac::TreeRenderer> renderer;
    std::function<void()> escaped; ///< what the escape key does when the tree has no use for it
}

/// Its window has come to the screen: what lies over the window may begin.
- (void)windowDidAppear;

/// Its window is going: takes away what lies over it, and draws nothing any more.
- (void)endContent;
@end
