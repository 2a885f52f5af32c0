#pragma once

#include "foundation/FourCharCode.hpp"

#include <cstdint>

/// Constants of Core Audio and of the audio units. The adapters compare them with their frameworks' own when compiled.
namespace sentrel::ports::audio {

inline constexpr std::uint32_t systemObject = 1;  // kAudioObjectSystemObject
inline constexpr std::uint32_t unknownObject = 0; // kAudioObjectUnknown: returned by a system without any output

inline constexpr std::uint32_t globalScope = fourCharCode("glob");
inline constexpr std::uint32_t outputScope = fourCharCode("outp");

inline constexpr std::uint32_t devicesSelector = fourCharCode("dev#");
inline constexpr std::uint32_t defaultOutputSelector = fourCharCode("dOut");
inline constexpr std::uint32_t streamConfigurationSelector = fourCharCode("slay");
inline constexpr std::uint32_t transportTypeSelector = fourCharCode("tran");
inline constexpr std::uint32_t deviceUIDSelector = fourCharCode("uid ");
inline constexpr std::uint32_t nameSelector = fourCharCode("lnam");
inline constexpr std::uint32_t muteSelector = fourCharCode("mute");
inline constexpr std::uint32_t virtualMainVolumeSelector = fourCharCode("vmvc");
inline constexpr std::uint32_t volumeScalarSelector = fourCharCode("volm");

inline constexpr std::uint32_t builtInTransport = fourCharCode("bltn");

inline constexpr std::uint32_t currentDeviceProperty = 2000; // kAudioOutputUnitProperty_CurrentDevice
inline constexpr std::uint32_t globalUnitScope = 0;          // kAudioUnitScope_Global

} // namespace sentrel::ports::audio
