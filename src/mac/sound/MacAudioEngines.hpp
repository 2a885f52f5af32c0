#pragma once

#include "ports/AudioEngine.hpp"

namespace sentrel::mac {

/// Audio engines of AVFAudio.
class MacAudioEngines final : public ports::AudioEngines {
public:
    [[nodiscard]] std::unique_ptr<ports::AudioEngine> makeEngine() override;
};

} // namespace sentrel::mac
