#pragma once

#include "foundation/FourCharCode.hpp"

#include <cstdint>

/// The numbers of Core Audio and of the audio units. Those of the adapters' own frameworks are compared with these when
/// the adapters are compiled.
namespace sentrel::ports::audio {

inline constexpr std::uint32_t systemObject = 1;  // kAudioObjectSystemObject
inline constexpr std::uint32_t unknownObject = 0; // kAudioObjectUnknown: what a system without any output answers

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
