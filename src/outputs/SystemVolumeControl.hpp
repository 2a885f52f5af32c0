#pragma once

#include "outputs/SavedOutputState.hpp"
#include "ports/AudioHardware.hpp"
#include "ports/Language.hpp"

#include <optional>
#include <string>

namespace sentrel {

/// Lets the alarm use the built-in speaker at its own volume, and restores the user's choice afterwards. Stateless;
/// reports no errors: a property that a device lacks, or an access that is refused or throws, is skipped. Any thread;
/// the calls may take as long as the audio system does.
class SystemVolumeControl {
public:
    SystemVolumeControl(ports::AudioHardware& hardware, ports::Language& language)
        : hardware_(hardware), language_(language)
    {
    }

    /// The built-in output device whose UID or name says speaker, else the first built-in one; none if there is none.
    [[nodiscard]] std::optional<ports::AudioObjectId> findBuiltInSpeaker() const;

    /// The system's default output device; none when it can't be read.
    [[nodiscard]] std::optional<ports::AudioObjectId> defaultOutputDevice() const;
    void setDefaultOutputDevice(ports::AudioObjectId device) const;

    /// The device's volume scalar, 0 to 1; none when it can't be read.
    [[nodiscard]] std::optional<float> volume(ports::AudioObjectId device) const;
    [[nodiscard]] bool isMuted(ports::AudioObjectId device) const;

    /// Unmutes the device and sets each of its volume properties, clamped to 0...1.
    void enforce(ports::AudioObjectId device, float volume) const;

    /// Makes the device the default output at this volume; returns what `restore` needs to undo that.
    [[nodiscard]] SavedOutputState takeOver(ports::AudioObjectId speaker, float volume) const;

    /// Restores the speaker, and the previous default device too if the take-over had switched away from it.
    void restore(const SavedOutputState& state) const;

private:
    [[nodiscard]] bool isBuiltInOutput(ports::AudioObjectId device) const;
    [[nodiscard]] bool callsItselfSpeaker(ports::AudioObjectId device) const;
    void writeMute(ports::AudioObjectId device, std::uint32_t value) const;

    ports::AudioHardware& hardware_;
    ports::Language& language_;
};

} // namespace sentrel
