#pragma once

/// AVFoundation's constants for media types, camera types and session presets.
namespace sentrel::ports {

inline constexpr auto videoMediaType = "vide"; // AVMediaTypeVideo
inline constexpr auto builtInCameraType = "AVCaptureDeviceTypeBuiltInWideAngleCamera";
inline constexpr auto photoPreset = "AVCaptureSessionPresetPhoto";

} // namespace sentrel::ports
