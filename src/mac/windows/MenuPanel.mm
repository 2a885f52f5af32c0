#include "mac/windows/MenuPanel.hpp"

#include "mac/windows/Placing.hpp"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>

namespace {

constexpr double cornerRadius = 10.0;
constexpr double gapBelowBar = 4.0;
constexpr double screenMargin = 8.0;
constexpr NSTimeInterval oneClick = 0.2;

/// The background of menus, with rounded corners.
NSVisualEffectView* makeGround()
{
    NSVisualEffectView* const ground = [[NSVisualEffectView alloc] init];
    ground.material = NSVisualEffectMaterialMenu;
    ground.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    ground.state = NSVisualEffectStateActive;
    ground.wantsLayer = YES;
    ground.layer.cornerRadius = cornerRadius;
    ground.layer.masksToBounds = YES;
    return ground;
}

} // namespace

@interface SentrelMenuPanel () <NSWindowDelegate>
@end

@implementation SentrelMenuPanel {
    __weak NSStatusBarButton* _button;
    id _clickMonitor;
    NSTimeInterval _dismissedAt;
}

- (instancetype)initForButton:(NSStatusBarButton*)button
{
    self = [super initWithContentRect:NSZeroRect
                            styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                              backing:NSBackingStoreBuffered
                                defer:YES];
    if (self == nil) {
        return nil;
    }
    _button = button;
    self.level = NSPopUpMenuWindowLevel;
    self.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace |
                              NSWindowCollectionBehaviorFullScreenAuxiliary | NSWindowCollectionBehaviorTransient;
    self.opaque = NO;
    self.backgroundColor = NSColor.clearColor;
    self.hasShadow = YES;
    self.releasedWhenClosed = NO;
    self.hidesOnDeactivate = NO;
    self.animationBehavior = NSWindowAnimationBehaviorUtilityWindow;
    self.delegate = self;
    NSView* const ground = makeGround();
    host = [[SentrelHostView alloc] initWithFrame:NSZeroRect];
    host.translatesAutoresizingMaskIntoConstraints = NO;
    [ground addSubview:host];
    sentrel::mac::pin(host, ground, 0.0);
    self.contentView = ground;
    __weak SentrelMenuPanel* const weakSelf = self;
    host->escaped = [weakSelf] { [weakSelf dismiss]; };
    return self;
}

- (BOOL)canBecomeKeyWindow
{
    return YES;
}

- (void)open
{
    [self fit];
    [self makeKeyAndOrderFront:nil];
    // Deferred: the button clears its highlight at the end of the click that opens the menu.
    [self performSelector:@selector(highlightButton) withObject:nil afterDelay:0.0 inModes:@[ NSDefaultRunLoopMode ]];
    [host windowDidAppear];
    if (_clickMonitor == nil) {
        __weak SentrelMenuPanel* const weakSelf = self;
        // Clicks on other applications, which don't take the keyboard from here.
        _clickMonitor =
            [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                                   handler:^(NSEvent*) {
                                                       [weakSelf dismiss];
                                                   }];
    }
}

- (void)highlightButton
{
    [_button highlight:YES];
}

- (BOOL)wasJustDismissed
{
    return NSProcessInfo.processInfo.systemUptime - _dismissedAt < oneClick;
}

- (void)dismiss
{
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(highlightButton) object:nil];
    if (self.visible) {
        _dismissedAt = NSProcessInfo.processInfo.systemUptime;
    }
    if (_clickMonitor != nil) {
        [NSEvent removeMonitor:_clickMonitor];
        _clickMonitor = nil;
    }
    [_button highlight:NO];
    [self orderOut:nil];
}

- (void)windowDidResignKey:(NSNotification*)notification
{
    // The menu's own sheets and dialogs take the keyboard, too.
    if (self.attachedSheet == nil) {
        [self dismiss];
    }
}

- (void)fit
{
    NSWindow* const bar = _button.window;
    if (bar == nil) {
        return;
    }
    [self.contentView layoutSubtreeIfNeeded];
    const NSSize size = self.contentView.fittingSize;
    const NSRect item = [bar convertRectToScreen:[_button convertRect:_button.bounds toView:nil]];
    const NSRect screen = bar.screen.visibleFrame;
    const double rightmost = NSMaxX(screen) - size.width - screenMargin;
    const double left = std::max(NSMinX(screen) + screenMargin, std::min(NSMinX(item), rightmost));
    const double top = NSMinY(item) - gapBelowBar;
    [self setFrame:NSMakeRect(left, top - size.height, size.width, size.height) display:YES];
}

@end
