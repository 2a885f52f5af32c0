#pragma once

#include "ui/View.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sentrel::ports {

/// A rectangle in points; y grows upward. Screens and windows use the coordinates that all screens share.
struct Rectangle {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

/// A size in points.
struct Size {
    double width = 0.0;
    double height = 0.0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// A display that shows windows.
struct Screen {
    std::uint32_t number = 0; ///< the display's own ("NSScreenNumber")
    Rectangle frame;
    friend bool operator==(const Screen&, const Screen&) = default;
};

/// Properties of a new window.
struct WindowDescription {
    Rectangle contentRectangle;
    std::uint64_t styleMask = 0; ///< an `NSWindowStyleMask`
    std::uint64_t backing = 0;   ///< an `NSBackingStoreType`
    bool isDeferred = false;     ///< its window device is made when it is first ordered front
    std::uint32_t screenNumber = 0;
    bool canBecomeKey = false;  ///< the window class's answer
    bool canBecomeMain = false; ///< likewise

    /// A panel (`NSPanel`) that keeps the keyboard while another application is active or a modal panel of this one
    /// runs.
    bool keepsKeyboard = false;
};

/// Questions that a window asks before it acts (`NSWindowDelegate`); an empty function allows the action. Main thread.
struct WindowDelegate {
    std::function<bool()> shouldClose;
    std::function<Size(Size proposedFrameSize)> willResize;
    std::function<Rectangle(Rectangle defaultFrame)> willUseStandardFrame;
};

/// A window. The destructor takes it off the screen. Each operation is a call of `NSWindow`, except where noted.
class Window {
public:
    virtual ~Window() = default;

    virtual void setLevel(std::int64_t level) = 0;
    virtual void setCollectionBehavior(std::uint64_t behavior) = 0;
    virtual void setOpaque(bool isOpaque) = 0;
    virtual void setBackgroundColor(const ui::Color& color) = 0;
    virtual void setHasShadow(bool hasShadow) = 0;
    virtual void setReleasedWhenClosed(bool isReleased) = 0;
    virtual void setTitle(const std::string& title) = 0;
    virtual void setIdentifier(const std::string& identifier) = 0;
    virtual void setDelegate(WindowDelegate delegate) = 0;
    virtual void setFrame(const Rectangle& frame, bool display) = 0;
    virtual void setContentMinSize(const Size& size) = 0;
    virtual void setContentMaxSize(const Size& size) = 0;
    virtual void center() = 0;
    [[nodiscard]] virtual Rectangle frame() = 0;
    [[nodiscard]] virtual bool isVisible() = 0;

    /// `frameRectForContentRect:` and its inverse.
    [[nodiscard]] virtual Rectangle frameForContent(const Rectangle& content) = 0;
    [[nodiscard]] virtual Rectangle contentForFrame(const Rectangle& frame) = 0;

    /// The frame of the content view, in the window's coordinates.
    [[nodiscard]] virtual Rectangle contentFrame() = 0;

    /// Makes a view that draws view trees the content view, with this frame and `NSAutoresizingMaskOptions`.
    virtual void hostContent(const Rectangle& frame, std::uint64_t autoresizingMask) = 0;

    /// Replaces the content view's tree. The user's interaction continues in nodes that keep their identity. May be
    /// called by the tree's own actions and bindings.
    virtual void showContent(ui::View content) = 0;

    virtual void orderFrontRegardless() = 0;
    virtual void makeKey() = 0;
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;
};

/// The screens and this application's windows. Main thread.
class Windows {
public:
    virtual ~Windows() = default;

    /// `NSScreen.screens`: the one with the menu bar first.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;

    /// `CGShieldingWindowLevel`.
    [[nodiscard]] virtual std::int64_t shieldingLevel() = 0;

    [[nodiscard]] virtual std::unique_ptr<Window> makeWindow(const WindowDescription& description) = 0;
};

} // namespace sentrel::ports
