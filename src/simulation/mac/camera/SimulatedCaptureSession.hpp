#pragma once

#include "simulation/mac/camera/SimulatedCamera.hpp"

#include <memory>
#include <string>
#include <utility>

namespace sentrel::simulation {

/// The output of photos of one session.
class SimulatedPhotoOutput final : public ports::PhotoOutput {
public:
    explicit SimulatedPhotoOutput(std::shared_ptr<CameraWorld> world) : world_(std::move(world)) {}

    void attach(const void* session) { session_ = session; }
    [[nodiscard]] bool isAttached() const { return session_ != nullptr; }
    void capturePhoto(const ports::PhotoSettings& settings,
                      std::weak_ptr<ports::PhotoOutputDelegate> delegate) override;

private:
    std::shared_ptr<CameraWorld> world_;
    const void* session_ = nullptr;
};

/// A session. Only one at a time can have the camera.
class SimulatedCaptureSession final : public ports::CaptureSession {
public:
    explicit SimulatedCaptureSession(std::shared_ptr<CameraWorld> world) : world_(std::move(world)) {}
    ~SimulatedCaptureSession() override;

    void setPreset(const std::string& preset) override { preset_ = preset; }
    [[nodiscard]] bool canAddInput(const ports::CaptureInput& input) override;
    void addInput(std::shared_ptr<ports::CaptureInput> input) override { input_ = std::move(input); }
    [[nodiscard]] bool canAddOutput(const ports::PhotoOutput& output) override;
    void addOutput(std::shared_ptr<ports::PhotoOutput> output) override;
    void startRunning() override;
    void stopRunning() override;
    [[nodiscard]] bool isRunning() const override;

private:
    void stop();

    std::shared_ptr<CameraWorld> world_;
    std::string preset_;
    std::shared_ptr<ports::CaptureInput> input_;
    std::shared_ptr<SimulatedPhotoOutput> output_;
};

} // namespace sentrel::simulation
