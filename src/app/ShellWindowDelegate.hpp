#pragma once

#include "ports/Windows.hpp"

#include <string_view>

namespace sentrel {

class ShellWindows;

/// A window of the application: its identifier, and the size of its content in points.
struct WindowSpec {
    std::string_view identifier;
    double width = 0.0;
    double leastHeight = 0.0;
    double mostHeight = 0.0;
    double startHeight = 0.0;
};

inline constexpr WindowSpec mainWindow{"sentrel-main-window", 440.0, 480.0, 1200.0, 720.0};
inline constexpr WindowSpec alertsWindow{"sentrel-alerts-window", 720.0, 360.0, 900.0, 480.0};

/// The behaviour of the application's windows: of bounded size, hidden instead of closed. Main actor.
class ShellWindowDelegate {
public:
    ShellWindowDelegate(ShellWindows& windows, const WindowSpec& spec) : windows_(windows), window_(spec) {}
    ShellWindowDelegate(const ShellWindowDelegate&) = delete;

    [[nodiscard]] const WindowSpec& window() const { return window_; }

    /// Makes this the window's delegate; it must outlive the window.
    void attachTo(ports::Window& window);

private:
    [[nodiscard]] bool windowShouldClose();
    [[nodiscard]] ports::Size windowWillResize(ports::Size proposedFrameSize);
    [[nodiscard]] ports::Rectangle windowWillUseStandardFrame(ports::Rectangle defaultFrame);

    ShellWindows& windows_;
    const WindowSpec window_;
};

/// The control panel window's.
class MainWindowDelegate final : public ShellWindowDelegate {
public:
    explicit MainWindowDelegate(ShellWindows& windows) : ShellWindowDelegate(windows, mainWindow) {}
};

/// The alerts window's.
class AlertsWindowDelegate final : public ShellWindowDelegate {
public:
    explicit AlertsWindowDelegate(ShellWindows& windows) : ShellWindowDelegate(windows, alertsWindow) {}
};

} // namespace sentrel
