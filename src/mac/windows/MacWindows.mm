#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/HostView.hpp"
#include "mac/windows/Windows.hpp"

#import <AppKit/AppKit.h>

#include <memory>
#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

/// A window that takes the keyboard only if its description allows.
@interface SentrelWindow : NSWindow {
@public
    BOOL mayBecomeKey;
    BOOL mayBecomeMain;
}
@end

@implementation SentrelWindow
- (BOOL)canBecomeKeyWindow
{
    return mayBecomeKey;
}
- (BOOL)canBecomeMainWindow
{
    return mayBecomeMain;
}
@end

/// A panel of that kind.
@interface SentrelPanel : NSPanel {
@public
    BOOL mayBecomeKey;
    BOOL mayBecomeMain;
}
@end

@implementation SentrelPanel
- (BOOL)canBecomeKeyWindow
{
    return mayBecomeKey;
}
- (BOOL)canBecomeMainWindow
{
    return mayBecomeMain;
}
@end

namespace {

NSRect rectOf(const ports::Rectangle& rectangle)
{
    return NSMakeRect(rectangle.x, rectangle.y, rectangle.width, rectangle.height);
}

NSSize sizeOf(const ports::Size& size)
{
    return NSMakeSize(size.width, size.height);
}

ports::Rectangle rectangleOf(NSRect rect)
{
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

} // namespace

/// Passes a window's calls to the product.
@interface SentrelWindowDelegate : NSObject <NSWindowDelegate> {
@public
    ports::WindowDelegate delegate;
}
@end

@implementation SentrelWindowDelegate

- (BOOL)windowShouldClose:(NSWindow*)sender
{
    return !delegate.shouldClose || delegate.shouldClose();
}

- (NSSize)windowWillResize:(NSWindow*)sender toSize:(NSSize)frameSize
{
    if (!delegate.willResize) {
        return frameSize;
    }
    return sizeOf(delegate.willResize({frameSize.width, frameSize.height}));
}

- (NSRect)windowWillUseStandardFrame:(NSWindow*)window defaultFrame:(NSRect)newFrame
{
    if (!delegate.willUseStandardFrame) {
        return newFrame;
    }
    return rectOf(delegate.willUseStandardFrame(rectangleOf(newFrame)));
}

@end

namespace {

std::uint32_t numberOf(NSScreen* screen)
{
    NSNumber* const number = screen.deviceDescription[@"NSScreenNumber"];
    return number.unsignedIntValue;
}

NSScreen* screenOf(std::uint32_t number)
{
    for (NSScreen* const screen in NSScreen.screens) {
        if (numberOf(screen) == number) {
            return screen;
        }
    }
    return nil;
}

template <class Window> Window* makeNative(const ports::WindowDescription& description, NSWindowStyleMask style)
{
    Window* const window = [[Window alloc] initWithContentRect:rectOf(description.contentRectangle)
                                                     styleMask:style
                                                       backing:static_cast<NSBackingStoreType>(description.backing)
                                                         defer:description.isDeferred
                                                        screen:screenOf(description.screenNumber)];
    window->mayBecomeKey = description.canBecomeKey;
    window->mayBecomeMain = description.canBecomeMain;
    return window;
}

NSWindow* makeNativeWindow(const ports::WindowDescription& description)
{
    const auto style = static_cast<NSWindowStyleMask>(description.styleMask);
    if (!description.keepsKeyboard) {
        return makeNative<SentrelWindow>(description, style);
    }
    SentrelPanel* const panel = makeNative<SentrelPanel>(description, style | NSWindowStyleMaskNonactivatingPanel);
    panel.hidesOnDeactivate = NO;
    panel.becomesKeyOnlyIfNeeded = NO;
    panel.worksWhenModal = YES;
    return panel;
}

class MacWindow final : public ports::Window {
public:
    explicit MacWindow(const ports::WindowDescription& description) : window_(makeNativeWindow(description)) {}
    ~MacWindow() override
    {
        window_.delegate = nil;
        [host_ endContent];
        [window_ orderOut:nil];
    }

    void setLevel(std::int64_t level) override
    {
        window_.level = level;
        // Hiding the application must not uncover the screen.
        window_.canHide = level < CGShieldingWindowLevel();
    }
    void setCollectionBehavior(std::uint64_t behavior) override
    {
        window_.collectionBehavior = static_cast<NSWindowCollectionBehavior>(behavior);
    }
    void setOpaque(bool isOpaque) override { window_.opaque = isOpaque; }
    void setBackgroundColor(const ui::Color& color) override { window_.backgroundColor = colorOf(color); }
    void setHasShadow(bool hasShadow) override { window_.hasShadow = hasShadow; }
    void setReleasedWhenClosed(bool isReleased) override { window_.releasedWhenClosed = isReleased; }
    void setTitle(const std::string& title) override { window_.title = stringObject(title); }
    void setIdentifier(const std::string& identifier) override { window_.identifier = stringObject(identifier); }
    void setDelegate(ports::WindowDelegate delegate) override
    {
        delegate_ = [[SentrelWindowDelegate alloc] init];
        delegate_->delegate = std::move(delegate);
        window_.delegate = delegate_; // not retained by the window
    }
    void setFrame(const ports::Rectangle& frame, bool display) override
    {
        [window_ setFrame:rectOf(frame) display:display];
    }
    void setContentMinSize(const ports::Size& size) override { window_.contentMinSize = sizeOf(size); }
    void setContentMaxSize(const ports::Size& size) override { window_.contentMaxSize = sizeOf(size); }
    void center() override { [window_ center]; }
    [[nodiscard]] ports::Rectangle frame() override { return rectangleOf(window_.frame); }
    [[nodiscard]] bool isVisible() override { return window_.isVisible; }
    [[nodiscard]] ports::Rectangle frameForContent(const ports::Rectangle& content) override
    {
        return rectangleOf([window_ frameRectForContentRect:rectOf(content)]);
    }
    [[nodiscard]] ports::Rectangle contentForFrame(const ports::Rectangle& frame) override
    {
        return rectangleOf([window_ contentRectForFrameRect:rectOf(frame)]);
    }
    [[nodiscard]] ports::Rectangle contentFrame() override { return rectangleOf(window_.contentView.frame); }
    void hostContent(const ports::Rectangle& frame, std::uint64_t autoresizingMask) override
    {
        host_ = [[SentrelHostView alloc] initWithFrame:rectOf(frame)];
        host_.autoresizingMask = static_cast<NSAutoresizingMaskOptions>(autoresizingMask);
        window_.contentView = host_;
    }
    void showContent(ui::View content) override { [host_ render:std::move(content)]; }
    void orderFrontRegardless() override
    {
        [window_ orderFrontRegardless];
        [host_ windowDidAppear];
    }
    void makeKey() override { [window_ makeKeyWindow]; }
    void makeKeyAndOrderFront() override
    {
        [window_ makeKeyAndOrderFront:nil];
        [host_ windowDidAppear];
    }
    void orderOut() override { [window_ orderOut:nil]; }

private:
    NSWindow* window_;
    SentrelHostView* host_ = nil;
    SentrelWindowDelegate* delegate_ = nil;
};

/// Screens and windows of AppKit.
class MacWindows final : public ports::Windows {
public:
    [[nodiscard]] std::vector<ports::Screen> screens() override
    {
        std::vector<ports::Screen> screens;
        for (NSScreen* const screen in NSScreen.screens) {
            screens.push_back({numberOf(screen), rectangleOf(screen.frame)});
        }
        return screens;
    }

    [[nodiscard]] std::int64_t shieldingLevel() override { return CGShieldingWindowLevel(); }

    [[nodiscard]] std::unique_ptr<ports::Window> makeWindow(const ports::WindowDescription& description) override
    {
        return std::make_unique<MacWindow>(description);
    }
};

} // namespace

std::unique_ptr<ports::Windows> sentrel::mac::makeWindows()
{
    return std::make_unique<MacWindows>();
}

bool sentrel::mac::isScreenShielded()
{
    for (NSWindow* const window in NSApp.windows) {
        if (window.visible && window.level >= CGShieldingWindowLevel()) {
            return true;
        }
    }
    return false;
}
