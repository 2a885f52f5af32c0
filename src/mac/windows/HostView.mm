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
        // So that keys arrive here before the person has clicked anywhere.
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

/// The tab key finds the controls in it, not the view, of which nothing is to be seen.
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

/// Whether the tree, or else whoever shows it, had a use for the key.
- (BOOL)press:(Key)key
{
    // Held: what the key does may bring a new tree.
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
