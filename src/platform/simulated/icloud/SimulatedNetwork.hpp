#pragma once

#include "platform/NetworkPath.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/Listener.hpp"

#include <mutex>

namespace sentrel::simulated {

/// The Mac's network path, which comes and goes. Any thread.
class SimulatedNetwork final : public platform::NetworkPaths {
public:
    [[nodiscard]] platform::RegistrationPtr
    monitor(SerialQueue& queue, std::function<void(platform::NetworkPathStatus)> pathChanged) override;

    /// Satisfied at first. The same status again is a change too, as when the interface changes.
    void setStatus(platform::NetworkPathStatus status);
    [[nodiscard]] platform::NetworkPathStatus status() const;

    void setUp(bool isUp);

    /// The path is lost and comes back, as often as that, in no time.
    void flap(int times);
    [[nodiscard]] bool isUp() const { return status() == platform::NetworkPathStatus::satisfied; }

    /// For what is part of the Mac: told of each change at once, on the thread of whoever makes it.
    [[nodiscard]] platform::RegistrationPtr observe(std::function<void(platform::NetworkPathStatus)> changed);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    using Observers = Listeners<platform::NetworkPathStatus>;

    Observers observers_;
    mutable std::mutex mutex_;
    platform::NetworkPathStatus status_ = platform::NetworkPathStatus::satisfied;
};

} // namespace sentrel::simulated
