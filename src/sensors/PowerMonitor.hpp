#pragma once

#include "ports/PowerSources.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <memory>

namespace sentrel {

/// Reports when the Mac is unplugged, once for each change from AC power to battery. It listens to the system's power
/// notification and, as a safety net, polls every 5 s. Main actor only.
class PowerMonitor {
public:
    PowerMonitor(MainActor mainActor, ports::PowerSources& sources);
    PowerMonitor(const PowerMonitor&) = delete;

    /// Called on the main actor at each unplugging.
    std::function<void()> onUnplugged;

    /// Starts watching from the present power state. A second start restarts the watch.
    void start();

    /// Ends the watch; nothing is reported afterwards. Safe when not started.
    void stop();

private:
    enum class PowerState { onAC, onBattery, unknown };

    [[nodiscard]] PowerState readState();
    void check();

    MainActor mainActor_;
    ports::PowerSources& sources_;
    std::unique_ptr<RepeatingTimer> timer_;
    ports::RegistrationPtr notification_;
    bool wasOnACPower_ = true;
    WeakAnchor<PowerMonitor> anchor_{*this};
};

} // namespace sentrel
