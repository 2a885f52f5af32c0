#pragma once

#include "ports/AudioHardware.hpp"
#include "ports/Journal.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/sound/AudioDevice.hpp"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace sentrel::simulation {

/// The MacBook's audio devices as objects with properties. The system object's identifier is 1. Any thread.
///
/// Faults: `has-property` (denied), `read-devices`, `read-default`, `write-default`, `read-channels`,
/// `read-transport`, `read-uid`, `read-name`, `read-volume`, `write-volume`, `read-mute`, `write-mute`.
class SimulatedAudio final : public ports::AudioHardware {
public:
    using Id = ports::AudioObjectId;
    using Address = ports::AudioPropertyAddress;

    static constexpr Id systemObject = 1;

    /// Starts with these devices. Throws `std::invalid_argument` if an identifier is repeated, 0 or that of the system
    /// object, or if the default output is none of the devices.
    SimulatedAudio(ports::Journal& journal, std::vector<AudioDevice> devices, std::optional<Id> defaultOutput);

    [[nodiscard]] bool hasProperty(Id object, const Address& address) override;
    [[nodiscard]] std::optional<std::uint32_t> readUInt32(Id object, const Address& address) override;
    [[nodiscard]] std::optional<float> readFloat32(Id object, const Address& address) override;
    [[nodiscard]] std::optional<std::string> readText(Id object, const Address& address) override;
    [[nodiscard]] std::optional<std::vector<Id>> readObjectList(Id object, const Address& address) override;
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> readBufferChannels(Id object,
                                                                               const Address& address) override;
    std::int32_t writeUInt32(Id object, const Address& address, std::uint32_t value) override;
    std::int32_t writeFloat32(Id object, const Address& address, float value) override;

    /// Plugs a device in; false when its identifier is taken.
    bool add(AudioDevice device);

    /// Unplugs a device. The default output moves to the first device with output that is left.
    bool remove(Id id);

    /// The user chooses the default output; none removes it. False if there is no such output device.
    bool setDefaultOutput(std::optional<Id> id);

    /// The user changes the volume or the mute; none leaves it as it is. False if there is no such device.
    bool setVolume(Id id, std::optional<float> volume, std::optional<bool> isMuted);

    [[nodiscard]] std::vector<AudioDevice> devices() const;
    [[nodiscard]] std::optional<AudioDevice> device(Id id) const;
    [[nodiscard]] std::optional<Id> defaultOutput() const;

    /// See `AudioDevice::audibleGain`; 0 for a device that is gone.
    [[nodiscard]] float audibleGain(Id id) const;

    /// Calls back after every audible change, on the thread that made it and under no lock.
    void observeChanges(std::function<void()> changed);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    [[nodiscard]] const AudioDevice* find(Id id) const;
    [[nodiscard]] AudioDevice* find(Id id);
    [[nodiscard]] std::optional<float> readControl(Id object, const Address& address);
    std::int32_t writeControl(Id object, const Address& address, float value);
    std::int32_t writeDefaultOutput(Id id);
    void noteDefaultOutput(std::optional<Id> id);
    void tellObserver();

    ports::Journal& journal_;
    FaultSwitches faults_{"has-property",  "read-devices",   "read-default", "write-default",
                          "read-channels", "read-transport", "read-uid",     "read-name",
                          "read-volume",   "write-volume",   "read-mute",    "write-mute"};
    mutable std::mutex mutex_;
    std::vector<AudioDevice> devices_;
    std::optional<Id> defaultOutput_;
    std::shared_ptr<const std::function<void()>> changed_;
};

} // namespace sentrel::simulation
