#pragma once

#include "ports/NetworkPath.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/Listener.hpp"

#include <mutex>

namespace sentrel::simulation {

/// The Mac's network path, which comes and goes. Any thread.
class SimulatedNetwork final : public ports::NetworkPaths {
public:
    [[nodiscard]] ports::RegistrationPtr monitor(SerialQueue& queue,
                                                 std::function<void(ports::NetworkPathStatus)> pathChanged) override;

    /// Initially satisfied. Repeating a status is a change, too, as when the interface changes.
    void setStatus(ports::NetworkPathStatus status);
    [[nodiscard]] ports::NetworkPathStatus status() const;

    void setUp(bool isUp);

    [[nodiscard]] bool isUp() const { return status() == ports::NetworkPathStatus::satisfied; }

    /// For parts of the simulated Mac: called at each change, on the thread that makes it.
    [[nodiscard]] ports::RegistrationPtr observe(std::function<void(ports::NetworkPathStatus)> changed);

    /// Faults: "status-twice" (a change is told twice).
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{"status-twice"};
    using Observers = Listeners<ports::NetworkPathStatus>;

    Observers observers_;
    mutable std::mutex mutex_;
    ports::NetworkPathStatus status_ = ports::NetworkPathStatus::satisfied;
};

} // namespace sentrel::simulation
