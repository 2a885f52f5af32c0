#include "simulation/mac/MacDescription.hpp"

#include <utility>

namespace sentrel::simulation {

AudioDevice simpleAudioDevice(std::uint32_t id, std::string name, std::string uid, float volume, bool isMuted)
{
    AudioDevice device;
    device.id = id;
    device.name = std::move(name);
    device.uid = std::move(uid);
    device.addControls({0}, volume, isMuted);
    return device;
}

} // namespace sentrel::simulation
