#pragma once

#include "ports/Registration.hpp"
#include "ports/RemoteNotifications.hpp"
#include "simulation/FaultSwitches.hpp"

#include <memory>
#include <optional>
#include <string>

namespace sentrel {
class Scheduler;
}

namespace sentrel::simulation {

class CloudLink;

/// The system's push service on one Mac. A push takes half the link's latency. While the network is down, each
/// subscription's last push waits; while no process is registered, pushes are dropped. The port's functions: main
/// thread; the others: any thread.
class SimulatedRemoteNotifications final : public ports::RemoteNotifications {
public:
    SimulatedRemoteNotifications(CloudLink& link, Scheduler& process);
    ~SimulatedRemoteNotifications() override;

    void setReceiver(Receiver receiver) override;

    /// Answered once the network is up.
    void registerForRemoteNotifications() override;
    [[nodiscard]] std::optional<ports::CloudNotification> cloudNotification(const Json& userInfo) override;

    /// Lets registering fail from now on, for this reason; none: succeed.
    void setFailure(std::optional<std::string> why);

    /// Delivers any push to the process at once; `userInfo` need not be a valid dictionary.
    void inject(const Json& userInfo);

    /// Ends deliveries to the process; a new process must register again. Main thread.
    void endProcess();

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    struct State;

    CloudLink& link_;
    std::shared_ptr<State> state_;
    ports::RegistrationPtr pushes_;
    ports::RegistrationPtr network_;
};

} // namespace sentrel::simulation
