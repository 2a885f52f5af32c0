#pragma once

#include "platform/AudioHardware.hpp"

namespace sentrel::macos {

/// The audio objects of CoreAudio.
class MacAudioHardware final : public platform::AudioHardware {
public:
    [[nodiscard]] bool hasProperty(platform::AudioObjectId object,
                                   const platform::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::uint32_t> readUInt32(platform::AudioObjectId object,
                                                          const platform::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<float> readFloat32(platform::AudioObjectId object,
                                                   const platform::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::string> readText(platform::AudioObjectId object,
                                                      const platform::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::vector<platform::AudioObjectId>>
    readObjectList(platform::AudioObjectId object, const platform::AudioPropertyAddress& address) override;
    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    readBufferChannels(platform::AudioObjectId object, const platform::AudioPropertyAddress& address) override;
    std::int32_t writeUInt32(platform::AudioObjectId object, const platform::AudioPropertyAddress& address,
                             std::uint32_t value) override;
    std::int32_t writeFloat32(platform::AudioObjectId object, const platform::AudioPropertyAddress& address,
                              float value) override;
};

} // namespace sentrel::macos
