#pragma once

#include "platform/ApplicationActivation.hpp"
#include "platform/simulated/FaultSwitches.hpp"

#include <atomic>

namespace sentrel::simulated {

/// Which application is in front: at first another one. Any thread.
class SimulatedApplicationActivation final : public platform::ApplicationActivation {
public:
    /// Brings the application to the front; without ignoring the others, the one in front keeps its place.
    void activate(bool ignoringOtherApplications) override
    {
        faults_.call("activate");
        if (ignoringOtherApplications) {
            isActive_ = true;
        }
    }

    /// The user turns to another application.
    void deactivate() { isActive_ = false; }

    [[nodiscard]] bool isActive() const { return isActive_; }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    std::atomic<bool> isActive_ = false;
};

} // namespace sentrel::simulated
