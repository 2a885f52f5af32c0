#pragma once

#include "foundation/FourCharCode.hpp"
#include "ports/AudioHardware.hpp"

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A volume or mute control of a device's output side.
struct AudioControl {
    std::uint32_t selector = 0; ///< one of the selectors below
    std::uint32_t element = 0;

    static constexpr std::uint32_t virtualMainVolume = fourCharCode("vmvc");
    static constexpr std::uint32_t volumeScalar = fourCharCode("volm");
    static constexpr std::uint32_t mute = fourCharCode("mute");

    friend auto operator<=>(const AudioControl&, const AudioControl&) = default;
};

/// An audio device as plain data.
struct AudioDevice {
    ports::AudioObjectId id = 0;
    std::string name = {};
    std::string uid = {};
    std::uint32_t transport = fourCharCode("bltn");
    std::vector<std::uint32_t> outputBuffers = {2}; ///< channels of each output buffer; empty for a microphone
    std::map<AudioControl, float> controls = {};    ///< a volume is 0...1; a mute is 0 or 1

    /// Adds a virtual main volume and a mute to each of the elements.
    void addControls(const std::vector<std::uint32_t>& elements, float volume, bool isMuted);

    [[nodiscard]] bool hasOutput() const;

    /// The mean of the virtual main volumes, or else of the volume scalars; none without either.
    [[nodiscard]] std::optional<float> volume() const;

    /// True if any element is muted.
    [[nodiscard]] bool isMuted() const;

    /// The factor from a signal to the ear: the volume, 1 without one, 0 if muted or without output.
    [[nodiscard]] float audibleGain() const;

    /// Writes every volume control, clamped to 0...1.
    void setVolume(float volume);

    /// Writes every mute control.
    void setMuted(bool isMuted);
};

} // namespace sentrel::simulation
