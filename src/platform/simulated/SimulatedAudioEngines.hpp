#pragma once

#include "platform/AudioEngine.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/Speaker.hpp"

#include <memory>

namespace sentrel::simulated {

/// Audio engines that are really heard: a scheduled buffer loops through the main mixer's volume and the device's.
/// Formats are at the hardware's 44.1 kHz; of several channels the first is heard. Any thread; it outlives its engines.
///
/// Faults: `device` (the output unit refuses its device), `format`, `buffer` (none is made), `attach`, `start`, `play`
/// (fail), `silent` (it plays, as far as it tells, and nothing is heard).
class SimulatedAudioEngines final : public platform::AudioEngines {
public:
    SimulatedAudioEngines(Speaker& speaker, SimulatedAudio& audio) : speaker_(speaker), audio_(audio) {}

    [[nodiscard]] std::unique_ptr<platform::AudioEngine> makeEngine() override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    Speaker& speaker_;
    SimulatedAudio& audio_;
    FaultSwitches faults_{"device", "format", "attach", "buffer", "start", "play", "silent"};
};

} // namespace sentrel::simulated
