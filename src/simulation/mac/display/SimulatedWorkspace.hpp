#pragma once

#include "ports/Journal.hpp"
#include "ports/WorkspaceNotifications.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/NotificationHub.hpp"

namespace sentrel::simulation {

/// The shared workspace's notification center. Notifications are posted on any thread and received on the main thread
/// of the scheduler.
///
/// Faults: `notification` (one gets lost), `notification-twice`.
class SimulatedWorkspace final : public ports::WorkspaceNotifications {
public:
    SimulatedWorkspace(Scheduler& scheduler, ports::Journal& journal)
        : journal_(journal), notifications_(scheduler.mainExecutor())
    {
    }

    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;

    /// Posts the notification and notes it.
    void post(const std::string& name);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    ports::Journal& journal_;
    FaultSwitches faults_{"notification", "notification-twice"};
    NotificationHub notifications_;
};

} // namespace sentrel::simulation
