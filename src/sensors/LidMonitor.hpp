#pragma once

#include "ports/DeviceRegistry.hpp"
#include "ports/WorkspaceNotifications.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Reports when the lid is closed, once for each change from open to closed. Checks whenever the screens go to sleep
/// and, as a safety net, every 2 s. A lid that can't be read counts as open. Main actor only.
class LidMonitor {
public:
    LidMonitor(MainActor mainActor, ports::DeviceRegistry& registry, ports::WorkspaceNotifications& workspace);
    LidMonitor(const LidMonitor&) = delete;

    /// Called on the main actor at each closing.
    std::function<void()> onLidClosed;

    /// Starts watching from the lid's present state. A second start restarts the watch.
    void start();

    /// Ends the watch; nothing is reported afterwards. Safe when not started.
    void stop();

    /// True when the lid is closed. Ends the program when the system's value doesn't fit an unsigned 32-bit number.
    [[nodiscard]] bool isLidClosed() const;

private:
    void check();

    MainActor mainActor_;
    ports::DeviceRegistry& registry_;
    ports::WorkspaceNotifications& workspace_;
    ports::RegistrationPtr observer_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool wasLidOpen_ = true;
    WeakAnchor<LidMonitor> anchor_{*this};
};

} // namespace sentrel
