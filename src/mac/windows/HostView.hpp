#pragma once

#include "mac/windows/NodeTarget.hpp"
#include "mac/windows/TreeRenderer.hpp"

#include <functional>
#include <memory>

/// A view that draws view trees, and offers them the keys that their views don't use. Main thread.
@interface SentrelHostView : NSView <SentrelKeyReceiver> {
@public
    std::unique_ptr<sentrel::mac::TreeRenderer> renderer;
    std::function<void()> escaped; ///< called for the escape key if the tree doesn't use it
}

/// Call when the window is on the screen: sheets and dialogs may begin.
- (void)windowDidAppear;

/// Call before the window ends: removes sheets, dialogs and all content.
- (void)endContent;
@end
