#include "simulation/mac/sound/SimulatedAudioEngines.hpp"

#include "simulation/mac/sound/SimulatedAudioEngine.hpp"

namespace sentrel::simulation {

std::unique_ptr<ports::AudioEngine> SimulatedAudioEngines::makeEngine()
{
    faults_.call("makeEngine");
    return std::make_unique<SimulatedAudioEngine>(*this);
}

void SimulatedAudioEngines::stopPlaying()
{
    const std::lock_guard guard{mutex_};
    while (!playing_.empty() && faults_.strikes("engine-stops")) {
        playing_.back()->fallSilent();
        playing_.pop_back();
    }
}

} // namespace sentrel::simulation
