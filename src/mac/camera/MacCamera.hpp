#pragma once

#include "ports/Camera.hpp"

namespace sentrel::mac {

/// Cameras through AVFoundation. Devices, inputs, outputs and settings passed in must come from here.
class MacCamera final : public ports::Camera {
public:
    [[nodiscard]] ports::CaptureAuthorization authorizationStatus(const std::string& mediaType) override;
    void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) override;
    [[nodiscard]] std::vector<std::shared_ptr<ports::CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureDevice> defaultDevice(const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureInput> makeInput(const ports::CaptureDevice& device) override;
    [[nodiscard]] std::unique_ptr<ports::CaptureSession> makeSession() override;
    [[nodiscard]] std::shared_ptr<ports::PhotoOutput> makePhotoOutput() override;
    [[nodiscard]] std::unique_ptr<ports::PhotoSettings> makePhotoSettings() override;
};

} // namespace sentrel::mac
