#pragma once

#include <functional>
#include <utility>

namespace sentrel {

/// Opens the application's windows for code that doesn't know the scenes. One instance serves the process. Main actor.
class WindowHooks {
public:
    /// Each call replaces and releases the earlier hook.
    void installControlPanel(std::function<void()> open) { openControlPanel_ = std::move(open); }
    void installAlerts(std::function<void()> open) { openAlerts_ = std::move(open); }

    /// No effect before a hook is installed.
    void openControlPanel() const { call(openControlPanel_); }
    void openAlerts() const { call(openAlerts_); }

private:
    /// Calls a copy: the hook may replace itself.
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
