#pragma once

#include "platform/simulated/AudioDevice.hpp"
#include "simulator/ValueReader.hpp"

#include <vector>

namespace sentrel::simulator {

/// The audio devices of `mac`, as `readMac` says. Throws `SourceFault`.
[[nodiscard]] std::vector<simulated::AudioDevice> readAudioDevices(const YamlValue& value, const ReadContext& context);

} // namespace sentrel::simulator
