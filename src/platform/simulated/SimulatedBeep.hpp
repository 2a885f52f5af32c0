#pragma once

#include "platform/AudioEngine.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/Speaker.hpp"

namespace sentrel::simulated {

/// The system's beep through the simulated speaker. Any thread.
///
/// Faults: `beep` (nothing is heard).
class SimulatedBeep final : public platform::SystemBeep {
public:
    explicit SimulatedBeep(Speaker& speaker) : speaker_(speaker) {}

    void beep() override
    {
        faults_.call("beep");
        if (!faults_.strikes("beep")) {
            speaker_.beep();
        }
    }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    Speaker& speaker_;
    FaultSwitches faults_{"beep"};
};

} // namespace sentrel::simulated
