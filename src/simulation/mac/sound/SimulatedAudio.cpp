#include "simulation/mac/sound/SimulatedAudio.hpp"

#include "foundation/FourCharCode.hpp"
#include "simulation/Events.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace sentrel::simulation {

namespace {

// <CoreAudio/AudioHardware.h> and <CoreAudio/AudioHardwareBase.h>
constexpr std::uint32_t globalScope = fourCharCode("glob");
constexpr std::uint32_t outputScope = fourCharCode("outp");
constexpr std::uint32_t deviceList = fourCharCode("dev#");
constexpr std::uint32_t defaultOutputDevice = fourCharCode("dOut");
constexpr std::uint32_t streamConfiguration = fourCharCode("slay");
constexpr std::uint32_t transportType = fourCharCode("tran");
constexpr std::uint32_t deviceUid = fourCharCode("uid ");
constexpr std::uint32_t deviceName = fourCharCode("lnam");

constexpr auto unknownProperty = static_cast<std::int32_t>(fourCharCode("who?"));
constexpr auto badObject = static_cast<std::int32_t>(fourCharCode("!obj"));
constexpr auto badDevice = static_cast<std::int32_t>(fourCharCode("!dev"));
constexpr auto unspecifiedError = static_cast<std::int32_t>(fourCharCode("what"));

bool isGlobal(const ports::AudioPropertyAddress& address, std::uint32_t selector)
{
    return address == ports::AudioPropertyAddress{selector, globalScope, 0};
}

bool isMute(const ports::AudioPropertyAddress& address)
{
    return address.selector == AudioControl::mute;
}

AudioControl controlAt(const ports::AudioPropertyAddress& address)
{
    return {address.selector, address.element};
}

bool hasControl(const AudioDevice& device, const ports::AudioPropertyAddress& address)
{
    return address.scope == outputScope && device.controls.contains(controlAt(address));
}

} // namespace

SimulatedAudio::SimulatedAudio(ports::Journal& journal, std::vector<AudioDevice> devices,
                               std::optional<Id> defaultOutput)
    : journal_(journal), defaultOutput_(defaultOutput)
{
    for (AudioDevice& device : devices) {
        if (device.id <= systemObject || find(device.id) != nullptr) {
            throw std::invalid_argument{"the audio device identifier is reserved or taken: " +
                                        std::to_string(device.id)};
        }
        devices_.push_back(std::move(device));
    }
    if (defaultOutput && find(*defaultOutput) == nullptr) {
        throw std::invalid_argument{"the default output " + std::to_string(*defaultOutput) + " is not an audio device"};
    }
}

bool SimulatedAudio::hasProperty(Id object, const Address& address)
{
    faults_.call("hasProperty");
    if (faults_.strikes("has-property")) {
        return false;
    }
    const std::lock_guard guard{mutex_};
    if (object == systemObject) {
        return isGlobal(address, deviceList) || isGlobal(address, defaultOutputDevice);
    }
    const AudioDevice* const device = find(object);
    if (device == nullptr) {
        return false;
    }
    return isGlobal(address, transportType) || isGlobal(address, deviceUid) || isGlobal(address, deviceName) ||
           address == Address{streamConfiguration, outputScope, 0} || hasControl(*device, address);
}

std::optional<std::uint32_t> SimulatedAudio::readUInt32(Id object, const Address& address)
{
    faults_.call("readUInt32");
    if (isMute(address)) {
        const auto value = readControl(object, address);
        return value ? std::optional{*value != 0.0F ? 1U : 0U} : std::nullopt;
    }
    if (object == systemObject && isGlobal(address, defaultOutputDevice)) {
        return faults_.strikes("read-default") ? std::nullopt : defaultOutput();
    }
    if (!isGlobal(address, transportType) || faults_.strikes("read-transport")) {
        return std::nullopt;
    }
    const auto found = device(object);
    return found ? std::optional{found->transport} : std::nullopt;
}

std::optional<float> SimulatedAudio::readFloat32(Id object, const Address& address)
{
    faults_.call("readFloat32");
    return isMute(address) ? std::nullopt : readControl(object, address);
}

std::optional<std::string> SimulatedAudio::readText(Id object, const Address& address)
{
    faults_.call("readText");
    const bool isUid = isGlobal(address, deviceUid);
    if ((!isUid && !isGlobal(address, deviceName)) || faults_.strikes(isUid ? "read-uid" : "read-name")) {
        return std::nullopt;
    }
    const auto found = device(object);
    if (!found) {
        return std::nullopt;
    }
    return isUid ? found->uid : found->name;
}

std::optional<std::vector<SimulatedAudio::Id>> SimulatedAudio::readObjectList(Id object, const Address& address)
{
    faults_.call("readObjectList");
    if (object != systemObject || !isGlobal(address, deviceList) || faults_.strikes("read-devices")) {
        return std::nullopt;
    }
    std::vector<Id> identifiers;
    const std::lock_guard guard{mutex_};
    for (const AudioDevice& device : devices_) {
        identifiers.push_back(device.id);
    }
    return identifiers;
}

std::optional<std::vector<std::uint32_t>> SimulatedAudio::readBufferChannels(Id object, const Address& address)
{
    faults_.call("readBufferChannels");
    if (address != Address{streamConfiguration, outputScope, 0} || faults_.strikes("read-channels")) {
        return std::nullopt;
    }
    const auto found = device(object);
    return found ? std::optional{found->outputBuffers} : std::nullopt;
}

std::int32_t SimulatedAudio::writeUInt32(Id object, const Address& address, std::uint32_t value)
{
    faults_.call("writeUInt32");
    if (isMute(address)) {
        return writeControl(object, address, value != 0 ? 1.0F : 0.0F);
    }
    if (object != systemObject || !isGlobal(address, defaultOutputDevice)) {
        return unknownProperty;
    }
    return faults_.strikes("write-default") ? unspecifiedError : writeDefaultOutput(value);
}

std::int32_t SimulatedAudio::writeFloat32(Id object, const Address& address, float value)
{
    faults_.call("writeFloat32");
    if (isMute(address)) {
        return unknownProperty;
    }
    return std::isfinite(value) ? writeControl(object, address, std::clamp(value, 0.0F, 1.0F)) : unspecifiedError;
}

bool SimulatedAudio::add(AudioDevice device)
{
    const Id id = device.id;
    const std::string name = device.name;
    {
        const std::lock_guard guard{mutex_};
        if (id <= systemObject || find(id) != nullptr) {
            return false;
        }
        devices_.push_back(std::move(device));
    }
    journal_.note(events::AudioDeviceAdded{id, name});
    tellObserver();
    return true;
}

bool SimulatedAudio::remove(Id id)
{
    bool wasDefault = false;
    std::optional<Id> successor;
    {
        const std::lock_guard guard{mutex_};
        if (std::erase_if(devices_, [id](const AudioDevice& device) { return device.id == id; }) == 0) {
            return false;
        }
        wasDefault = defaultOutput_ == id;
        if (wasDefault) {
            const auto next = std::ranges::find_if(devices_, &AudioDevice::hasOutput);
            successor = next != devices_.end() ? std::optional{next->id} : std::nullopt;
            defaultOutput_ = successor;
        }
    }
    journal_.note(events::AudioDeviceRemoved{id});
    if (wasDefault) {
        noteDefaultOutput(successor);
    }
    tellObserver();
    return true;
}

bool SimulatedAudio::setDefaultOutput(std::optional<Id> id)
{
    if (id) {
        return writeDefaultOutput(*id) == 0;
    }
    {
        const std::lock_guard guard{mutex_};
        if (!defaultOutput_) {
            return true;
        }
        defaultOutput_.reset();
    }
    noteDefaultOutput(std::nullopt);
    tellObserver();
    return true;
}

bool SimulatedAudio::setVolume(Id id, std::optional<float> volume, std::optional<bool> isMuted)
{
    float heardVolume = 1.0F;
    bool heardMuted = false;
    {
        const std::lock_guard guard{mutex_};
        AudioDevice* const device = find(id);
        if (device == nullptr) {
            return false;
        }
        if (volume) {
            device->setVolume(*volume);
        }
        if (isMuted) {
            device->setMuted(*isMuted);
        }
        heardVolume = device->volume().value_or(1.0F);
        heardMuted = device->isMuted();
    }
    // Rounded: a float widened to a double shows spurious digits.
    const double shown = std::round(static_cast<double>(heardVolume) * 1e6) / 1e6;
    journal_.note(events::VolumeChanged{.device = id, .volume = shown, .muted = heardMuted});
    tellObserver();
    return true;
}

std::vector<AudioDevice> SimulatedAudio::devices() const
{
    const std::lock_guard guard{mutex_};
    return devices_;
}

std::optional<AudioDevice> SimulatedAudio::device(Id id) const
{
    const std::lock_guard guard{mutex_};
    const AudioDevice* const found = find(id);
    return found != nullptr ? std::optional{*found} : std::nullopt;
}

std::optional<SimulatedAudio::Id> SimulatedAudio::defaultOutput() const
{
    const std::lock_guard guard{mutex_};
    return defaultOutput_;
}

float SimulatedAudio::audibleGain(Id id) const
{
    const std::lock_guard guard{mutex_};
    const AudioDevice* const found = find(id);
    return found != nullptr ? found->audibleGain() : 0.0F;
}

void SimulatedAudio::observeChanges(std::function<void()> changed)
{
    auto shared = std::make_shared<const std::function<void()>>(std::move(changed));
    const std::lock_guard guard{mutex_};
    changed_.swap(shared);
}

const AudioDevice* SimulatedAudio::find(Id id) const
{
    const auto found = std::ranges::find(devices_, id, &AudioDevice::id);
    return found != devices_.end() ? &*found : nullptr;
}

AudioDevice* SimulatedAudio::find(Id id)
{
    return const_cast<AudioDevice*>(std::as_const(*this).find(id));
}

std::optional<float> SimulatedAudio::readControl(Id object, const Address& address)
{
    if (faults_.strikes(isMute(address) ? "read-mute" : "read-volume")) {
        return std::nullopt;
    }
    const std::lock_guard guard{mutex_};
    const AudioDevice* const device = find(object);
    if (device == nullptr || !hasControl(*device, address)) {
        return std::nullopt;
    }
    return device->controls.at(controlAt(address));
}

std::int32_t SimulatedAudio::writeControl(Id object, const Address& address, float value)
{
    if (faults_.strikes(isMute(address) ? "write-mute" : "write-volume")) {
        return unspecifiedError;
    }
    {
        const std::lock_guard guard{mutex_};
        AudioDevice* const device = find(object);
        if (device == nullptr) {
            return badObject;
        }
        if (!hasControl(*device, address)) {
            return unknownProperty;
        }
        float& control = device->controls.at(controlAt(address));
        if (std::exchange(control, value) == value) {
            return 0;
        }
    }
    tellObserver();
    return 0;
}

std::int32_t SimulatedAudio::writeDefaultOutput(Id id)
{
    {
        const std::lock_guard guard{mutex_};
        const AudioDevice* const device = find(id);
        if (device == nullptr || !device->hasOutput()) {
            return badDevice;
        }
        if (defaultOutput_ == id) {
            return 0;
        }
        defaultOutput_ = id;
    }
    noteDefaultOutput(id);
    tellObserver();
    return 0;
}

void SimulatedAudio::noteDefaultOutput(std::optional<Id> id)
{
    journal_.note(events::DefaultOutputChanged{id});
}

void SimulatedAudio::tellObserver()
{
    std::shared_ptr<const std::function<void()>> changed;
    {
        const std::lock_guard guard{mutex_};
        changed = changed_;
    }
    if (changed != nullptr && *changed) {
        (*changed)();
    }
}

} // namespace sentrel::simulation
