#pragma once

#include "simulation/mac/sound/AudioDevice.hpp"
#include "simulation/stage/ValueReader.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The audio devices of `mac`, as `readMac` says. Throws `SourceFault`.
[[nodiscard]] std::vector<AudioDevice> readAudioDevices(const YamlValue& value, const ReadContext& context);

/// The first word for a transport in a scenario; "unknown" for one without a word.
[[nodiscard]] std::string_view transportName(std::uint32_t transport);

} // namespace sentrel::simulation
