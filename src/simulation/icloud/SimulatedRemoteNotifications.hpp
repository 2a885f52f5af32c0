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

/// The system's push service on one Mac. A push travels half the link's latency. While the network is down pushes wait,
/// of each subscription the last only; while no process has registered they are dropped. The port's part belongs to
/// the main thread, the rest to any.
class SimulatedRemoteNotifications final : public ports::RemoteNotifications {
public:
    SimulatedRemoteNotifications(CloudLink& link, Scheduler& process);
    ~SimulatedRemoteNotifications() override;

    void setReceiver(Receiver receiver) override;

    /// Is answered once the network is up.
    void registerForRemoteNotifications() override;
    [[nodiscard]] std::optional<ports::CloudNotification> cloudNotification(const Json& userInfo) override;

    /// Registering fails from now on, for this reason; none: it works.
    void setFailure(std::optional<std::string> why);

    /// A push of anybody's comes to the process, at once: any dictionary, or what should be one.
    void inject(const Json& userInfo);

    /// The process has ended: it hears no more, and a new one must register anew. On the main thread.
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
