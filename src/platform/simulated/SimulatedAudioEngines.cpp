#include "platform/simulated/SimulatedAudioEngines.hpp"

#include "platform/simulated/SimulatedAudioEngine.hpp"

namespace sentrel::simulated {

std::unique_ptr<platform::AudioEngine> SimulatedAudioEngines::makeEngine()
{
    return std::make_unique<SimulatedAudioEngine>(speaker_, audio_, faults_);
}

} // namespace sentrel::simulated
