#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <CoreAudio/CoreAudio.h>
#import <Foundation/Foundation.h>

#include <cstddef>
#include <span>

namespace sentrel::mac {

namespace {

using ports::AudioObjectId;
using ports::AudioPropertyAddress;

AudioObjectPropertyAddress native(const AudioPropertyAddress& address)
{
    return {address.selector, address.scope, address.element};
}

/// A value of a fixed size; none when it can't be read or is of another size.
template <class Value> std::optional<Value> readValue(AudioObjectId object, const AudioPropertyAddress& address)
{
    const AudioObjectPropertyAddress where = native(address);
    Value value{};
    UInt32 size = sizeof value;
    const OSStatus status = AudioObjectGetPropertyData(object, &where, 0, nullptr, &size, &value);
    if (status != noErr || size != sizeof value) {
        return std::nullopt;
    }
    return value;
}

/// The raw bytes of a value of any size, aligned for every type.
std::optional<std::vector<std::byte>> readBytes(AudioObjectId object, const AudioPropertyAddress& address)
{
    const AudioObjectPropertyAddress where = native(address);
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(object, &where, 0, nullptr, &size) != noErr) {
        return std::nullopt;
    }
    std::vector<std::byte> bytes(size);
    if (AudioObjectGetPropertyData(object, &where, 0, nullptr, &size, bytes.data()) != noErr) {
        return std::nullopt;
    }
    bytes.resize(size);
    return bytes;
}

template <class Value>
OSStatus writeValue(AudioObjectId object, const AudioPropertyAddress& address, const Value& value)
{
    const AudioObjectPropertyAddress where = native(address);
    return AudioObjectSetPropertyData(object, &where, 0, nullptr, sizeof value, &value);
}

/// The audio objects of CoreAudio.
class MacAudioHardware final : public ports::AudioHardware {
public:
    [[nodiscard]] bool hasProperty(AudioObjectId object, const AudioPropertyAddress& address) override
    {
        const AudioObjectPropertyAddress where = native(address);
        return AudioObjectHasProperty(object, &where) != 0;
    }

    [[nodiscard]] std::optional<std::uint32_t> readUInt32(AudioObjectId object,
                                                          const AudioPropertyAddress& address) override
    {
        return readValue<std::uint32_t>(object, address);
    }

    [[nodiscard]] std::optional<float> readFloat32(AudioObjectId object, const AudioPropertyAddress& address) override
    {
        return readValue<float>(object, address);
    }

    [[nodiscard]] std::optional<std::string> readText(AudioObjectId object,
                                                      const AudioPropertyAddress& address) override
    {
        const auto value = readValue<CFStringRef>(object, address);
        return optionalText(CFBridgingRelease(value.value_or(nullptr)));
    }

    [[nodiscard]] std::optional<std::vector<AudioObjectId>> readObjectList(AudioObjectId object,
                                                                           const AudioPropertyAddress& address) override
    {
        const auto bytes = readBytes(object, address);
        if (!bytes) {
            return std::nullopt;
        }
        const auto* const first = reinterpret_cast<const AudioObjectId*>(bytes->data());
        return std::vector<AudioObjectId>(first, first + bytes->size() / sizeof(AudioObjectId));
    }

    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    readBufferChannels(AudioObjectId object, const AudioPropertyAddress& address) override
    {
        const auto bytes = readBytes(object, address);
        if (!bytes || bytes->size() < offsetof(AudioBufferList, mBuffers)) {
            return std::nullopt;
        }
        const auto& list = *reinterpret_cast<const AudioBufferList*>(bytes->data());
        std::vector<std::uint32_t> channels;
        for (const AudioBuffer& buffer : std::span(&list.mBuffers[0], list.mNumberBuffers)) {
            channels.push_back(buffer.mNumberChannels);
        }
        return channels;
    }

    std::int32_t writeUInt32(AudioObjectId object, const AudioPropertyAddress& address, std::uint32_t value) override
    {
        return writeValue(object, address, value);
    }

    std::int32_t writeFloat32(AudioObjectId object, const AudioPropertyAddress& address, float value) override
    {
        return writeValue(object, address, value);
    }
};

} // namespace

std::unique_ptr<ports::AudioHardware> makeAudioHardware()
{
    return std::make_unique<MacAudioHardware>();
}

} // namespace sentrel::mac
