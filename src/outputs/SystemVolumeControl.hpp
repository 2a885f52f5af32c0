#pragma once

#include "outputs/SavedOutputState.hpp"
#include "platform/AudioHardware.hpp"
#include "platform/Language.hpp"

#include <optional>
#include <string>

namespace sentrel {

/// Lets the alarm use the built-in speaker at its own volume, whatever the user has chosen, and puts everything back.
/// It keeps no state and reports no errors: what a device doesn't have, refuses or raises is passed over. Any thread;
/// the calls may take as long as the audio system does.
class SystemVolumeControl {
public:
    SystemVolumeControl(platform::AudioHardware& hardware, platform::Language& language)
        : hardware_(hardware), language_(language)
    {
    }

    /// The built-in output device that calls itself a speaker, else the first built-in one; none without any.
    [[nodiscard]] std::optional<platform::AudioObjectId> findBuiltInSpeaker() const;

    /// The system's default output device; none when it can't be read.
    [[nodiscard]] std::optional<platform::AudioObjectId> defaultOutputDevice() const;
    void setDefaultOutputDevice(platform::AudioObjectId device) const;

    /// The device's volume scalar, 0 to 1; none when it has none that can be read.
    [[nodiscard]] std::optional<float> volume(platform::AudioObjectId device) const;
    [[nodiscard]] bool isMuted(platform::AudioObjectId device) const;

    /// Unmutes the device and sets its volume, bounded to 0...1, wherever it has one.
    void enforce(platform::AudioObjectId device, float volume) const;

    /// Makes the device the default output at this volume; returns what `restore` needs to undo that.
    [[nodiscard]] SavedOutputState takeOver(platform::AudioObjectId speaker, float volume) const;

    /// Puts the speaker back, and the previous default device too if the take-over had switched away from it.
    void restore(const SavedOutputState& state) const;

private:
    [[nodiscard]] bool isBuiltInOutput(platform::AudioObjectId device) const;
    [[nodiscard]] bool callsItselfSpeaker(platform::AudioObjectId device) const;
    void writeMute(platform::AudioObjectId device, std::uint32_t value) const;

    platform::AudioHardware& hardware_;
    platform::Language& language_;
};

} // namespace sentrel
