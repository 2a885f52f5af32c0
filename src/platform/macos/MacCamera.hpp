#pragma once

#include "platform/Camera.hpp"

namespace sentrel::macos {

/// Cameras through AVFoundation. Devices, inputs, outputs and settings that come in were made here.
class MacCamera final : public platform::Camera {
public:
    [[nodiscard]] platform::CaptureAuthorization authorizationStatus(const std::string& mediaType) override;
    void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) override;
    [[nodiscard]] std::vector<std::shared_ptr<platform::CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<platform::CaptureDevice> defaultDevice(const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<platform::CaptureInput> makeInput(const platform::CaptureDevice& device) override;
    [[nodiscard]] std::unique_ptr<platform::CaptureSession> makeSession() override;
    [[nodiscard]] std::shared_ptr<platform::PhotoOutput> makePhotoOutput() override;
    [[nodiscard]] std::unique_ptr<platform::PhotoSettings> makePhotoSettings() override;
};

} // namespace sentrel::macos
