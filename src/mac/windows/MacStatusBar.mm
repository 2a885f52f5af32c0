#include "mac/Adapters.hpp"

#include "mac/foundation/CallCopy.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/HostView.hpp"
#include "mac/windows/Placing.hpp"
#include "mac/windows/Windows.hpp"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <functional>
#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

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

/// A window used as the menu of a status item's button: opens below the button, and closes when the user turns to
/// something else. Main thread.
@interface SentrelMenuPanel : NSPanel <NSWindowDelegate> {
@public
    SentrelHostView* host;
    std::function<void()> opened; ///< called before the menu opens: it opens with current content
}
- (instancetype)initForButton:(NSStatusBarButton*)button;
- (void)dismiss;

/// Fits size and place to the content; call after a change.
- (void)fit;
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
    button.target = self;
    button.action = @selector(clicked:);
    // A menu opens when the button goes down.
    [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
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
    pin(host, ground, 0.0);
    self.contentView = ground;
    __weak SentrelMenuPanel* const weakSelf = self;
    host->escaped = [weakSelf] { [weakSelf dismiss]; };
    return self;
}

- (BOOL)canBecomeKeyWindow
{
    return YES;
}

- (void)clicked:(id)sender
{
    // The keyboard reaches the menu bar behind a shield, too.
    if (isScreenShielded()) {
        return;
    }
    if (self.visible) {
        [self dismiss];
        return;
    }
    // The system draws status items in another process: a click on ours that has closed the menu also counts as one
    // elsewhere, and must not reopen it.
    if (NSProcessInfo.processInfo.systemUptime - _dismissedAt < oneClick) {
        return;
    }
    callCopy(opened);
    [self open];
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

namespace {

/// The asset, or a system symbol: an item without an image is invisible and can't be clicked.
NSImage* imageOf(NSString* asset)
{
    if (NSImage* const image = [NSImage imageNamed:asset]) {
        return image;
    }
    NSString* const symbol = [asset hasSuffix:@"Armed"] ? @"checkmark.shield" : @"shield";
    return [NSImage imageWithSystemSymbolName:symbol accessibilityDescription:nil];
}

class MacStatusItem final : public ports::StatusItem {
public:
    MacStatusItem() = default;
    ~MacStatusItem() override
    {
        [panel_ dismiss];
        [panel_->host endContent];
        item_.button.target = nil;
        [NSStatusBar.systemStatusBar removeStatusItem:item_];
    }
    MacStatusItem(const MacStatusItem&) = delete;

    void setImage(const std::string& asset, const std::string& accessibilityLabel) override
    {
        NSImage* const image = imageOf(stringObject(asset));
        // In the color of the menu bar, light or dark.
        [image setTemplate:YES];
        item_.button.image = image;
        item_.button.accessibilityLabel = stringObject(accessibilityLabel);
    }
    void showContent(ui::View content) override
    {
        [panel_->host render:std::move(content)];
        if (panel_.isVisible) {
            [panel_ fit];
        }
    }
    void setOpened(std::function<void()> opened) override { panel_->opened = std::move(opened); }
    void dismiss() override { [panel_ dismiss]; }

private:
    NSStatusItem* const item_ = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    SentrelMenuPanel* const panel_ = [[SentrelMenuPanel alloc] initForButton:item_.button];
};

/// The system's menu bar.
class MacStatusBar final : public ports::StatusBar {
public:
    [[nodiscard]] std::unique_ptr<ports::StatusItem> makeStatusItem() override
    {
        return std::make_unique<MacStatusItem>();
    }
};

} // namespace

std::unique_ptr<ports::StatusBar> sentrel::mac::makeStatusBar()
{
    return std::make_unique<MacStatusBar>();
}
