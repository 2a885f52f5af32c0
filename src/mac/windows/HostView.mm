#include "mac/windows/HostView.hpp"

#include "mac/windows/Appearance.hpp"
#include "mac/windows/Placing.hpp"
#include "mac/windows/WindowAttachments.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

@implementation SentrelHostView {
    std::shared_ptr<const ui::View> _content;
    std::unique_ptr<DrawnNode> _root;
    Placement _placement;
    WindowAttachments _attachments;
}

- (void)render:(ui::View)content
{
    // The old tree stays until nothing refers to it: lists read their rows whenever they scroll.
    const auto before = std::exchange(_content, std::make_shared<const ui::View>(std::move(content)));
    const ui::Traits& traits = _content->traits;
    DrawnNode::drawIn(self, _root, *_content, "", {});
    // The panes of a split view have safe areas of their own, below the toolbar.
    const bool reachesEdges = traits.ignoresSafeAreas || ui::elementOf<ui::SplitView>(*_content) != nullptr;
    const id area = reachesEdges ? static_cast<id>(self) : self.safeAreaLayoutGuide;
    _placement.place(area, *_root, traits.ignoresSafeAreas || traits.background.has_value());
    [self windowDidAppear];
}

- (void)visit:(const DrawnNode::Visit&)visitor
{
    if (_root) {
        _root->visit("", visitor);
    }
}

- (void)viewDidMoveToWindow
{
    [super viewDidMoveToWindow];
    NSWindow* const window = self.window;
    window.autorecalculatesKeyViewLoop = YES;
    if (window != nil && window.firstResponder == window) {
        // Keys must arrive here even before the first click.
        [window makeFirstResponder:self];
    }
    [self windowDidAppear];
}

/// Gives the keyboard to the node that asks for it, and begins sheets and dialogs.
- (void)windowDidAppear
{
    if (_root) {
        _attachments.show(self.window, *_content);
        _root->applyFocus();
    }
}

- (void)endContent
{
    [self render:{}];
}

- (BOOL)acceptsFirstResponder
{
    return YES;
}

/// The tab key reaches the controls in it, but skips the invisible view itself.
- (BOOL)canBecomeKeyView
{
    return NO;
}

- (void)keyDown:(NSEvent*)event
{
    const auto key = keyOf(event);
    if (!key || ![self press:*key]) {
        [super keyDown:event];
    }
}

- (void)cancelOperation:(id)sender
{
    [self press:ui::Key::escape];
}

- (void)returnKeyPressed:(id)sender
{
    [self press:ui::Key::returnKey];
}

/// Offers the key to the tree, then to `escaped`; YES if it was used.
- (BOOL)press:(ui::Key)key
{
    // Held: the key's action may bring a new tree.
    const auto content = _content;
    if (content && ui::pressKey(*content, key, "") == ui::Interaction::done) {
        return YES;
    }
    const auto escape = escaped;
    if (key != ui::Key::escape || !escape) {
        return NO;
    }
    escape();
    return YES;
}

@end
