#pragma once

#include "ports/Windows.hpp"
#include "simulation/mac/display/SimulatedWindow.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The windows of the product: their order, the keyboard's owner, and the person's actions on their frames. It must
/// outlive its handles. The product's main thread.
class WindowList {
public:
    using WindowPtr = std::shared_ptr<WindowState>;

    WindowList() = default;
    WindowList(const WindowList&) = delete;
    WindowList& operator=(const WindowList&) = delete;

    [[nodiscard]] std::unique_ptr<ports::Window> open(const ports::WindowDescription& description);

    /// All windows, hidden ones too, in the order in which they were made.
    [[nodiscard]] const std::vector<WindowPtr>& all() const { return windows_; }

    /// The visible windows, the one in front first.
    [[nodiscard]] std::vector<WindowPtr> frontToBack() const;

    /// The window of this identifier, or null.
    [[nodiscard]] WindowPtr find(std::string_view identifier) const;

    /// The window that has the keyboard while the application is active, or null.
    [[nodiscard]] WindowPtr key() const;

    /// Gives the window the keyboard if its kind can have it.
    void makeKey(WindowState& window);

    /// Moves the window in front of the others of its level.
    void orderFront(WindowState& window);

    /// Hides the window; the keyboard goes to the next window that can have it.
    void orderOut(WindowState& window);

    /// Called when a window is given the keyboard. May be empty.
    std::function<void()> onKey;

    // Actions on the title bar and the edges; the window's delegate is asked first. False if the window's style doesn't
    // offer the action, or the delegate keeps the window as it is.

    bool close(const WindowPtr& window);
    /// Drags an edge until the content would have this size. An invalid size from the delegate is ignored.
    bool resize(const WindowPtr& window, ports::Size content);
    bool zoom(const WindowPtr& window, const ports::Rectangle& screen);
    /// Drags the title bar until the frame's lower left corner is at this point, but never off the screens.
    bool move(const WindowPtr& window, double x, double y, const std::vector<ports::Screen>& screens);

private:
    class Handle;

    std::vector<WindowPtr> windows_;
    std::uint64_t opened_ = 0;
    std::uint64_t ordered_ = 0;
};

/// The content's rectangle inside a window's frame, and the frame around content.
[[nodiscard]] ports::Rectangle contentOf(const WindowState& window, const ports::Rectangle& frame);
[[nodiscard]] ports::Rectangle frameAround(const WindowState& window, const ports::Rectangle& content);

} // namespace sentrel::simulation
