#pragma once

#include "ports/AudioEngine.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/sound/Speaker.hpp"

#include <memory>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

class SimulatedAudioEngine;

/// Audio engines that play on the simulated speaker: a scheduled buffer loops at the main mixer's volume times the
/// device's. Formats have the hardware's 44.1 kHz; only the first channel is heard. Any thread; it must outlive its
/// engines.
///
/// Faults: `device` (the output unit refuses its device), `format`, `buffer` (none is made), `attach`, `start`, `play`
/// (fail), `engine-stops` (a playing one stops by itself, now or once there is one), `silent` (it reports that it
/// plays, but nothing is heard).
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
