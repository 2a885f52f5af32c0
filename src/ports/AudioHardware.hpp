#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::ports {

using AudioObjectId = std::uint32_t;

/// Address of a property of an audio object: selector and scope are four-character codes.
struct AudioPropertyAddress {
    std::uint32_t selector = 0;
    std::uint32_t scope = 0;
    std::uint32_t element = 0;

    friend bool operator==(const AudioPropertyAddress&, const AudioPropertyAddress&) = default;
};

/// Properties of the audio objects (`AudioObjectHasProperty`, `AudioObjectGetPropertyDataSize`,
/// `AudioObjectGetPropertyData`, `AudioObjectSetPropertyData`), one function for each kind of value. Reads give none on
/// any failure; writes return an `OSStatus`, 0 on success. Any thread.
class AudioHardware {
public:
    virtual ~AudioHardware() = default;

    [[nodiscard]] virtual bool hasProperty(AudioObjectId object, const AudioPropertyAddress& address) = 0;
    [[nodiscard]] virtual std::optional<std::uint32_t> readUInt32(AudioObjectId object,
                                                                  const AudioPropertyAddress& address) = 0;
    [[nodiscard]] virtual std::optional<float> readFloat32(AudioObjectId object,
                                                           const AudioPropertyAddress& address) = 0;
    [[nodiscard]] virtual std::optional<std::string> readText(AudioObjectId object,
                                                              const AudioPropertyAddress& address) = 0;
    [[nodiscard]] virtual std::optional<std::vector<AudioObjectId>>
    readObjectList(AudioObjectId object, const AudioPropertyAddress& address) = 0;

    /// Channel count of each buffer of a stream configuration.
    [[nodiscard]] virtual std::optional<std::vector<std::uint32_t>>
    readBufferChannels(AudioObjectId object, const AudioPropertyAddress& address) = 0;

    virtual std::int32_t writeUInt32(AudioObjectId object, const AudioPropertyAddress& address,
                                     std::uint32_t value) = 0;
    virtual std::int32_t writeFloat32(AudioObjectId object, const AudioPropertyAddress& address, float value) = 0;
};

} // namespace sentrel::ports
