#include "mac/windows/HostView.hpp"

#include "mac/windows/Appearance.hpp"
#include "ui/Interaction.hpp"

using sentrel::ui::Key;

@implementation SentrelHostView

- (instancetype)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self != nil) {
        renderer = std::make_unique<sentrel::mac::TreeRenderer>(self);
    }
    return self;
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
    renderer->windowChanged();
}

- (void)windowDidAppear
{
    renderer->windowChanged();
}

- (void)endContent
{
    renderer->render({});
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
    const auto key = sentrel::mac::keyOf(event);
    if (!key || ![self press:*key]) {
        [super keyDown:event];
    }
}

- (void)cancelOperation:(id)sender
{
    [self press:Key::escape];
}

- (void)returnKeyPressed:(id)sender
{
    [self press:Key::returnKey];
}

/// Offers the key to the tree, then to `escaped`; YES if it was used.
- (BOOL)press:(Key)key
{
    // Held: the key's action may bring a new tree.
    const auto content = renderer->content();
    if (content && sentrel::ui::pressKey(*content, key, "") == sentrel::ui::Interaction::done) {
        return YES;
    }
    const auto escape = escaped;
    if (key != Key::escape || !escape) {
        return NO;
    }
    escape();
    return YES;
}

@end
