#pragma once

#include "simulation/mac/CloudChange.hpp"
#include "simulation/mac/camera/CameraChange.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"
#include "simulation/mac/security/SimulatedLogin.hpp"
#include "simulation/mac/sound/AudioDevice.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// An audio device with one volume and one mute, on its main output element.
[[nodiscard]] inline AudioDevice simpleAudioDevice(std::uint32_t id, std::string name, std::string uid, float volume,
                                                   bool isMuted)
{
    AudioDevice device{.id = id, .name = std::move(name), .uid = std::move(uid)};
    device.addControls({0}, volume, isMuted);
    return device;
}

/// The initial state of a simulated MacBook, as plain values. By default a MacBook Pro on its charger, lid open, with
/// one built-in speaker.
struct MacDescription {
    enum class Power { ac, battery, unknown };
    enum class Lid { open, closed, absent };
    /// A present accelerometer delivers what it is given; a resting one also delivers a machine at rest.
    enum class Accelerometer { absent, present, resting };
    using Music = SimulatedMusic::Playback;
    using Consent = SimulatedMusic::Consent;

    std::string model = "MacBookPro18,3";   ///< `hw.model`
    std::optional<std::string> productName; ///< the firmware's, such as "MacBook Air (M2, 2022)"
    std::optional<std::string> localizedName = "MacBook";
    std::optional<std::string> bundleIdentifier = "pelma.Sentrel";
    std::string language = "en_US";      ///< the user's locale, in ICU or BCP 47 form
    std::optional<std::string> timeZone; ///< name in the IANA database; none for UTC
    Power power = Power::ac;
    Lid lid = Lid::open;
    Accelerometer accelerometer = Accelerometer::present;
    std::vector<AudioDevice> audio{simpleAudioDevice(73, "MacBook Pro Speakers", "BuiltInSpeakerDevice", 0.5F, false)};
    std::optional<std::uint32_t> defaultOutput = 73;
    std::size_t displays = 1; ///< the built-in one included
    Music music = Music::absent;
    Consent automationConsent = Consent::undetermined;
    CameraChange camera; ///< differences from a Mac without cameras whose user allows them
    /// Differences from a Mac with a network whose user is signed in. By default there is no account.
    CloudChange iCloud{.account = ports::CloudAccountStatus::noAccount};
    LoginAnswer login = LoginAnswer::succeed;
    /// The unlock passcode that is set before the first launch.
    std::optional<std::string> passcode;
    /// A folder with "Application Support" and "Preferences" to copy onto the disk before the first launch.
    std::optional<std::filesystem::path> files;
};

} // namespace sentrel::simulation
