#pragma once

/// The texts by which AVFoundation tells media, cameras and qualities apart.
namespace sentrel::ports {

inline constexpr auto videoMediaType = "vide"; // AVMediaTypeVideo
inline constexpr auto builtInCameraType = "AVCaptureDeviceTypeBuiltInWideAngleCamera";
inline constexpr auto photoPreset = "AVCaptureSessionPresetPhoto";

} // namespace sentrel::ports
