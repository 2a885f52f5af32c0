#pragma once

#include "ports/AudioEngine.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/sound/Speaker.hpp"

namespace sentrel::simulation {

/// The system's beep through the simulated speaker. Any thread.
///
/// Faults: `beep` (nothing is heard).
class SimulatedBeep final : public ports::SystemBeep {
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

} // namespace sentrel::simulation
