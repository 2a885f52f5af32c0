#pragma once

#include "platform/Journal.hpp"
#include "platform/WorkspaceNotifications.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/NotificationHub.hpp"
#include "runtime/Scheduler.hpp"

namespace sentrel::simulated {

/// The shared workspace's notification center. Notifications are posted on any thread and received on the main thread
/// of the scheduler.
///
/// Faults: `notification` (one gets lost).
class SimulatedWorkspace final : public platform::WorkspaceNotifications {
public:
    SimulatedWorkspace(Scheduler& scheduler, platform::Journal& journal)
        : journal_(journal), notifications_(scheduler.mainExecutor())
    {
    }

    [[nodiscard]] platform::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;

    /// Posts the notification and notes it.
    void post(const std::string& name);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    platform::Journal& journal_;
    FaultSwitches faults_{"notification"};
    NotificationHub notifications_;
};

} // namespace sentrel::simulated
