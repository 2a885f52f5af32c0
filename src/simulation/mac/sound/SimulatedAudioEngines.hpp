#pragma once

#include "ports/AudioEngine.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/sound/Speaker.hpp"

#include <memory>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

class SimulatedAudioEngine;

/// Audio engines that are really heard: a scheduled buffer loops through the main mixer's volume and the device's.
/// Formats are at the hardware's 44.1 kHz; of several channels the first is heard. Any thread; it outlives its engines.
///
/// Faults: `device` (the output unit refuses its device), `format`, `buffer` (none is made), `attach`, `start`, `play`
/// (fail), `engine-stops` (one that plays stops by itself, now or as soon as there is one), `silent` (it plays, as far
/// as it tells, and nothing is heard).
class SimulatedAudioEngines final : public ports::AudioEngines {
public:
    SimulatedAudioEngines(Speaker& speaker, SimulatedAudio& audio) : speaker_(speaker), audio_(audio)
    {
        faults_.onSet([this] { stopPlaying(); });
    }

    [[nodiscard]] std::unique_ptr<ports::AudioEngine> makeEngine() override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    friend class SimulatedAudioEngine;
    void stopPlaying();

    Speaker& speaker_;
    SimulatedAudio& audio_;
    FaultSwitches faults_{"device", "format", "attach", "buffer", "start", "play", "engine-stops", "silent"};
    std::mutex mutex_;
    std::vector<SimulatedAudioEngine*> playing_;
};

} // namespace sentrel::simulation
