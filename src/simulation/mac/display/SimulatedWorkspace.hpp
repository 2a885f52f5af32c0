#pragma once

#include "ports/Journal.hpp"
#include "ports/WorkspaceNotifications.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/Events.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/NotificationHub.hpp"

#include <functional>
#include <string>
#include <utility>

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

    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override
    {
        faults_.call("observe");
        return notifications_.observe(name, std::move(received));
    }

    /// Posts the notification and notes it.
    void post(const std::string& name)
    {
        journal_.note(events::WorkspaceNotification{name});
        if (!faults_.strikes("notification")) {
            notifications_.post(name);
        }
        if (faults_.strikes("notification-twice")) {
            notifications_.post(name);
        }
    }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    ports::Journal& journal_;
    FaultSwitches faults_{"notification", "notification-twice"};
    NotificationHub notifications_;
};

} // namespace sentrel::simulation
