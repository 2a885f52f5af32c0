#include "outputs/SystemVolumeControl.hpp"

#include "foundation/Quietly.hpp"
#include "ports/AudioConstants.hpp"

#include <algorithm>
#include <array>

namespace sentrel {

namespace {

using ports::AudioObjectId;
using ports::AudioPropertyAddress;

using namespace ports::audio;

constexpr AudioPropertyAddress devices{devicesSelector, globalScope, 0};
constexpr AudioPropertyAddress defaultOutput{defaultOutputSelector, globalScope, 0};
constexpr AudioPropertyAddress streamConfiguration{streamConfigurationSelector, outputScope, 0};
constexpr AudioPropertyAddress transportType{transportTypeSelector, globalScope, 0};
constexpr AudioPropertyAddress deviceUID{deviceUIDSelector, globalScope, 0};
constexpr AudioPropertyAddress deviceName{nameSelector, globalScope, 0};

// Devices expose the virtual main volume, the plain one, or both; the first is preferred for reading.
constexpr std::array<std::uint32_t, 2> volumeSelectors{virtualMainVolumeSelector, volumeScalarSelector};

// The main element and the first four channels.
constexpr std::array<std::uint32_t, 5> outputElements{0, 1, 2, 3, 4};

constexpr const char* speakerUIDMark = "BuiltInSpeaker";
constexpr const char* speakerNameMark = "Speaker";

} // namespace

std::optional<AudioObjectId> SystemVolumeControl::findBuiltInSpeaker() const
{
    auto candidates = quietly([&] { return hardware_.readObjectList(systemObject, devices); });
    if (!candidates) {
        return std::nullopt;
    }
    std::erase_if(*candidates, [this](AudioObjectId device) { return !isBuiltInOutput(device); });
    if (candidates->empty()) {
        return std::nullopt;
    }
    const auto isSpeaker = [this](AudioObjectId device) { return callsItselfSpeaker(device); };
    const auto speaker = std::find_if(candidates->begin(), candidates->end(), isSpeaker);
    return speaker != candidates->end() ? *speaker : candidates->front();
}

bool SystemVolumeControl::isBuiltInOutput(AudioObjectId device) const
{
    const auto channels = quietly([&] { return hardware_.readBufferChannels(device, streamConfiguration); });
    if (!channels || std::all_of(channels->begin(), channels->end(), [](std::uint32_t count) { return count == 0; })) {
        return false;
    }
    return quietly([&] { return hardware_.readUInt32(device, transportType); }) == builtInTransport;
}

bool SystemVolumeControl::callsItselfSpeaker(AudioObjectId device) const
{
    const auto uid = quietly([&] { return hardware_.readText(device, deviceUID); }).value_or("");
    if (quietly([&] { return language_.containsIgnoringCase(uid, speakerUIDMark); })) {
        return true;
    }
    const auto name = quietly([&] { return hardware_.readText(device, deviceName); }).value_or("");
    return quietly([&] { return language_.containsIgnoringCase(name, speakerNameMark); });
}

std::optional<AudioObjectId> SystemVolumeControl::defaultOutputDevice() const
{
    const auto device = quietly([&] { return hardware_.readUInt32(systemObject, defaultOutput); });
    return device != unknownObject ? device : std::nullopt;
}

void SystemVolumeControl::setDefaultOutputDevice(AudioObjectId device) const
{
    quietly([&] { return hardware_.writeUInt32(systemObject, defaultOutput, device); });
}

std::optional<float> SystemVolumeControl::volume(AudioObjectId device) const
{
    for (const std::uint32_t selector : volumeSelectors) {
        for (const std::uint32_t element : outputElements) {
            const AudioPropertyAddress address{selector, outputScope, element};
            if (quietly([&] { return hardware_.hasProperty(device, address); })) {
                return quietly([&] { return hardware_.readFloat32(device, address); });
            }
        }
    }
    return std::nullopt;
}

bool SystemVolumeControl::isMuted(AudioObjectId device) const
{
    return std::ranges::any_of(outputElements, [&](std::uint32_t element) {
        const AudioPropertyAddress address{muteSelector, outputScope, element};
        return quietly([&] { return hardware_.hasProperty(device, address); }) &&
               quietly([&] { return hardware_.readUInt32(device, address); }).value_or(0) != 0;
    });
}

void SystemVolumeControl::writeMute(AudioObjectId device, std::uint32_t value) const
{
    for (const std::uint32_t element : outputElements) {
        const AudioPropertyAddress address{muteSelector, outputScope, element};
        if (quietly([&] { return hardware_.hasProperty(device, address); })) {
            quietly([&] { return hardware_.writeUInt32(device, address, value); });
        }
    }
}

void SystemVolumeControl::enforce(AudioObjectId device, float volume) const
{
    writeMute(device, 0);
    const float bounded = volume > 0.0F ? std::min(volume, 1.0F) : 0.0F;
    // Sets every selector, not only the one that is read: the effective one differs between devices.
    for (const std::uint32_t selector : volumeSelectors) {
        for (const std::uint32_t element : outputElements) {
            const AudioPropertyAddress address{selector, outputScope, element};
            if (quietly([&] { return hardware_.hasProperty(device, address); })) {
                quietly([&] { return hardware_.writeFloat32(device, address, bounded); });
            }
        }
    }
}

SavedOutputState SystemVolumeControl::takeOver(AudioObjectId speaker, float alarmVolume) const
{
    SavedOutputState state;
    state.speakerDeviceID = speaker;
    state.previousDefaultDeviceID = defaultOutputDevice();
    if (state.previousDefaultDeviceID && *state.previousDefaultDeviceID != speaker) {
        setDefaultOutputDevice(speaker);
        state.switchedDefaultDevice = true; // also when the system refused: switching back does no harm
    }
    state.speakerVolume = volume(speaker).value_or(0.0F);
    state.speakerWasMuted = isMuted(speaker);
    if (state.previousDefaultDeviceID) {
        state.previousDefaultVolume = volume(*state.previousDefaultDeviceID).value_or(0.0F);
        state.previousDefaultWasMuted = isMuted(*state.previousDefaultDeviceID);
    }
    enforce(speaker, alarmVolume);
    return state;
}

void SystemVolumeControl::restore(const SavedOutputState& state) const
{
    enforce(state.speakerDeviceID, state.speakerVolume);
    if (state.speakerWasMuted) {
        writeMute(state.speakerDeviceID, 1);
    }
    if (!state.switchedDefaultDevice || !state.previousDefaultDeviceID) {
        return;
    }
    const AudioObjectId previous = *state.previousDefaultDeviceID;
    setDefaultOutputDevice(previous);
    if (state.previousDefaultVolume) {
        enforce(previous, *state.previousDefaultVolume);
    }
    if (state.previousDefaultWasMuted) {
        writeMute(previous, 1);
    }
}

} // namespace sentrel
