#pragma once

#include "platform/AudioEngine.hpp"

namespace sentrel::macos {

/// Audio engines of AVFAudio.
class MacAudioEngines final : public platform::AudioEngines {
public:
    [[nodiscard]] std::unique_ptr<platform::AudioEngine> makeEngine() override;
};

} // namespace sentrel::macos
