#include "platform/simulated/SimulatedAudioEngines.hpp"

#include "platform/simulated/SimulatedAudioEngine.hpp"

namespace sentrel::simulated {

std::unique_ptr<platform::AudioEngine> SimulatedAudioEngines::makeEngine()
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

} // namespace sentrel::simulated
