#pragma once

#include "ports/Windows.hpp"
#include "simulation/mac/display/SimulatedWindow.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The windows of the product: which there are, in which order they lie upon each other, which has the keyboard, and
/// what a person does to their frames. It outlives the handles that it gives. The product's main thread.
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

    /// Gives it the keyboard, if it can have it.
    void makeKey(WindowState& window);

    /// Puts it before the others of its level.
    void orderFront(WindowState& window);

    /// Takes it off the screen; the keyboard goes to the next window that can have it.
    void orderOut(WindowState& window);

    /// Called when a window is given the keyboard; none at first.
    std::function<void()> onKey;

    // What a person does with the title bar and the edges; the window's delegate is asked first. False when the
    // window's style doesn't offer it, or the answer keeps the window as it is.

    bool close(const WindowPtr& window);
    /// Drags an edge until the content would have this size; whatever comes out that is no size is ignored.
    bool resize(const WindowPtr& window, ports::Size content);
    bool zoom(const WindowPtr& window, const ports::Rectangle& screen);
    /// Drags the title bar to where the frame's lower left corner is here, but never off the screens.
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
