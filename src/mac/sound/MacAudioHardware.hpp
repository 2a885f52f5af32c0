#pragma once

#include "ports/AudioHardware.hpp"

namespace sentrel::mac {

/// The audio objects of CoreAudio.
class MacAudioHardware final : public ports::AudioHardware {
public:
    [[nodiscard]] bool hasProperty(ports::AudioObjectId object, const ports::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::uint32_t> readUInt32(ports::AudioObjectId object,
                                                          const ports::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<float> readFloat32(ports::AudioObjectId object,
                                                   const ports::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::string> readText(ports::AudioObjectId object,
                                                      const ports::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::vector<ports::AudioObjectId>>
    readObjectList(ports::AudioObjectId object, const ports::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    readBufferChannels(ports::AudioObjectId object, const ports::AudioPropertyAddress& address) override;
    std::int32_t writeUInt32(ports::AudioObjectId object, const ports::AudioPropertyAddress& address,
                             std::uint32_t value) override;
    std::int32_t writeFloat32(ports::AudioObjectId object, const ports::AudioPropertyAddress& address,
                              float value) override;
};

} // namespace sentrel::mac
