#include "platform/macos/MacWindows.hpp"

#include "platform/macos/Appearance.hpp"
#include "platform/macos/FoundationText.hpp"
#include "platform/macos/HostView.hpp"

#import <AppKit/AppKit.h>

#include <memory>
#include <utility>

/// A window whose description says whether it may have the keyboard.
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

/// The same of a panel.
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

namespace sentrel::macos {

namespace {

NSRect rectOf(const platform::Rectangle& rectangle)
{
    return NSMakeRect(rectangle.x, rectangle.y, rectangle.width, rectangle.height);
}

NSSize sizeOf(const platform::Size& size)
{
    return NSMakeSize(size.width, size.height);
}

platform::Rectangle rectangleOf(NSRect rect)
{
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

} // namespace

} // namespace sentrel::macos

/// Hands a window's questions to the product.
@interface SentrelWindowDelegate : NSObject <NSWindowDelegate> {
@public
    sentrel::platform::WindowDelegate delegate;
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
    return sentrel::macos::sizeOf(delegate.willResize({frameSize.width, frameSize.height}));
}

- (NSRect)windowWillUseStandardFrame:(NSWindow*)window defaultFrame:(NSRect)newFrame
{
    if (!delegate.willUseStandardFrame) {
        return newFrame;
    }
    return sentrel::macos::rectOf(delegate.willUseStandardFrame(sentrel::macos::rectangleOf(newFrame)));
}

@end

namespace sentrel::macos {

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

NSWindow* makePanel(const platform::WindowDescription& description)
{
    const auto style = static_cast<NSWindowStyleMask>(description.styleMask) | NSWindowStyleMaskNonactivatingPanel;
    SentrelPanel* const panel =
        [[SentrelPanel alloc] initWithContentRect:rectOf(description.contentRectangle)
                                        styleMask:style
                                          backing:static_cast<NSBackingStoreType>(description.backing)
                                            defer:description.isDeferred
                                           screen:screenOf(description.screenNumber)];
    panel->mayBecomeKey = description.canBecomeKey;
    panel->mayBecomeMain = description.canBecomeMain;
    panel.hidesOnDeactivate = NO;
    panel.becomesKeyOnlyIfNeeded = NO;
    panel.worksWhenModal = YES;
    return panel;
}

NSWindow* makeNativeWindow(const platform::WindowDescription& description)
{
    if (description.keepsKeyboard) {
        return makePanel(description);
    }
    SentrelWindow* const window =
        [[SentrelWindow alloc] initWithContentRect:rectOf(description.contentRectangle)
                                         styleMask:static_cast<NSWindowStyleMask>(description.styleMask)
                                           backing:static_cast<NSBackingStoreType>(description.backing)
                                             defer:description.isDeferred
                                            screen:screenOf(description.screenNumber)];
    window->mayBecomeKey = description.canBecomeKey;
    window->mayBecomeMain = description.canBecomeMain;
    return window;
}

class MacWindow final : public platform::Window {
public:
    explicit MacWindow(const platform::WindowDescription& description) : window_(makeNativeWindow(description)) {}
    ~MacWindow() override
    {
        window_.delegate = nil;
        [host_ endContent];
        [window_ orderOut:nil];
    }

    void setLevel(std::int64_t level) override
    {
        window_.level = level;
        // Hiding the application must not bare the screen.
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
    void setDelegate(platform::WindowDelegate delegate) override
    {
        delegate_ = [[SentrelWindowDelegate alloc] init];
        delegate_->delegate = std::move(delegate);
        window_.delegate = delegate_; // which the window does not retain
    }
    void setFrame(const platform::Rectangle& frame, bool display) override
    {
        [window_ setFrame:rectOf(frame) display:display];
    }
    void setContentMinSize(const platform::Size& size) override { window_.contentMinSize = sizeOf(size); }
    void setContentMaxSize(const platform::Size& size) override { window_.contentMaxSize = sizeOf(size); }
    void center() override { [window_ center]; }
    [[nodiscard]] platform::Rectangle frame() override { return rectangleOf(window_.frame); }
    [[nodiscard]] bool isVisible() override { return window_.isVisible; }
    [[nodiscard]] platform::Rectangle frameForContent(const platform::Rectangle& content) override
    {
        return rectangleOf([window_ frameRectForContentRect:rectOf(content)]);
    }
    [[nodiscard]] platform::Rectangle contentForFrame(const platform::Rectangle& frame) override
    {
        return rectangleOf([window_ contentRectForFrameRect:rectOf(frame)]);
    }
    [[nodiscard]] platform::Rectangle contentFrame() override { return rectangleOf(window_.contentView.frame); }
    void hostContent(const platform::Rectangle& frame, std::uint64_t autoresizingMask) override
    {
        host_ = [[SentrelHostView alloc] initWithFrame:rectOf(frame)];
        host_.autoresizingMask = static_cast<NSAutoresizingMaskOptions>(autoresizingMask);
        window_.contentView = host_;
    }
    void showContent(ui::View content) override
    {
        if (host_ != nil) {
            host_->renderer->render(std::move(content));
        }
    }
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

} // namespace

std::vector<platform::Screen> MacWindows::screens()
{
    std::vector<platform::Screen> screens;
    for (NSScreen* const screen in NSScreen.screens) {
        screens.push_back({numberOf(screen), rectangleOf(screen.frame)});
    }
    return screens;
}

std::int64_t MacWindows::shieldingLevel()
{
    return CGShieldingWindowLevel();
}

bool isScreenShielded()
{
    for (NSWindow* const window in NSApp.windows) {
        if (window.visible && window.level >= CGShieldingWindowLevel()) {
            return true;
        }
    }
    return false;
}

std::unique_ptr<platform::Window> MacWindows::makeWindow(const platform::WindowDescription& description)
{
    return std::make_unique<MacWindow>(description);
}

} // namespace sentrel::macos
