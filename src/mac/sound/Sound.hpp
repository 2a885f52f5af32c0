#pragma once

#include "ports/AudioEngine.hpp"
#include "ports/AudioHardware.hpp"

#include <memory>

// Sound through Core Audio and AVFAudio.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::AudioHardware> makeAudioHardware();
[[nodiscard]] std::unique_ptr<ports::AudioEngines> makeAudioEngines();
[[nodiscard]] std::unique_ptr<ports::SystemBeep> makeSystemBeep();

} // namespace sentrel::mac
