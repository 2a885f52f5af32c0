#pragma once

#include "simulation/mac/sound/AudioDevice.hpp"
#include "simulation/stage/ValueReader.hpp"

#include <vector>

namespace sentrel::simulation {

/// The audio devices of `mac`, as `readMac` says. Throws `SourceFault`.
[[nodiscard]] std::vector<simulation::AudioDevice> readAudioDevices(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulation
