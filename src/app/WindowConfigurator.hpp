#pragma once

#include "app/ShellWindowDelegate.hpp"

#include <memory>

namespace sentrel {

/// Sets a new window's identifier, delegate and initial size. Lives as long as the window. Main actor.
class WindowConfigurator {
public:
    /// The initial size of the content, in points.
    [[nodiscard]] ports::Size startSize() const { return {delegate_->bounds().width, startHeight_}; }

    [[nodiscard]] std::string_view identifier() const { return delegate_->identifier(); }

    void configure(ports::Window& window);

protected:
    WindowConfigurator(ShellWindows& windows, std::unique_ptr<ShellWindowDelegate> delegate, double startHeight);

private:
    ShellWindows& windows_;
    std::unique_ptr<ShellWindowDelegate> delegate_;
    double startHeight_;
};

/// For the control panel.
class MainWindowConfigurator final : public WindowConfigurator {
public:
    explicit MainWindowConfigurator(ShellWindows& windows);
};

/// For the window of alerts.
class AlertsWindowConfigurator final : public WindowConfigurator {
public:
    explicit AlertsWindowConfigurator(ShellWindows& windows);
};

} // namespace sentrel
