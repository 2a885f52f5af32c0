#pragma once

#include <functional>
#include <utility>

namespace sentrel {

/// How the application's windows are opened by those who don't know the scenes. One of these serves the whole process.
/// Main actor.
class WindowHooks {
public:
    /// Each releases the hook that it replaces.
    void installControlPanel(std::function<void()> open) { openControlPanel_ = std::move(open); }
    void installAlerts(std::function<void()> open) { openAlerts_ = std::move(open); }

    /// Nothing happens before a hook is installed.
    void openControlPanel() const { call(openControlPanel_); }
    void openAlerts() const { call(openAlerts_); }

private:
    /// Calls a copy: the hook may be replaced by what it does.
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    static void call(std::function<void()> hook)
    {
        if (hook) {
            hook();
        }
    }

    std::function<void()> openControlPanel_;
    std::function<void()> openAlerts_;
};

} // namespace sentrel
