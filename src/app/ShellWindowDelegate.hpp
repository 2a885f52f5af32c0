#pragma once

#include "ports/Windows.hpp"

#include <string_view>

namespace sentrel {

class ShellWindows;

/// The size limits of a window's content, in points.
struct ContentBounds {
    double width = 0.0;
    double leastHeight = 0.0;
    double mostHeight = 0.0;
};

/// The common behaviour of the application's windows: bounded size, hidden instead of closed. Main actor.
class ShellWindowDelegate {
public:
    ShellWindowDelegate(const ShellWindowDelegate&) = delete;
    virtual ~ShellWindowDelegate() = default;

    [[nodiscard]] bool windowShouldClose();
    [[nodiscard]] ports::Size windowWillResize(ports::Size proposedFrameSize);
    [[nodiscard]] ports::Rectangle windowWillUseStandardFrame(ports::Rectangle defaultFrame);

    [[nodiscard]] std::string_view identifier() const { return identifier_; }
    [[nodiscard]] const ContentBounds& bounds() const { return bounds_; }

    /// Makes this the window's delegate; it must outlive the window.
    void attachTo(ports::Window& window);

protected:
    ShellWindowDelegate(ShellWindows& windows, std::string_view identifier, ContentBounds bounds)
        : windows_(windows), identifier_(identifier), bounds_(bounds)
    {
    }

private:
    ShellWindows& windows_;
    std::string_view identifier_; ///< refers to a constant
    ContentBounds bounds_;
};

/// The delegate of the control panel.
class MainWindowDelegate final : public ShellWindowDelegate {
public:
    explicit MainWindowDelegate(ShellWindows& windows);
};

/// The delegate of the alerts window.
class AlertsWindowDelegate final : public ShellWindowDelegate {
public:
    explicit AlertsWindowDelegate(ShellWindows& windows);
};

} // namespace sentrel
