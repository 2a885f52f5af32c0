#pragma once

#include "simulation/mac/camera/SimulatedCamera.hpp"
#include "simulation/mac/camera/scene/CafeScene.hpp"

#include <atomic>
#include <mutex>
#include <utility>

namespace sentrel::simulation {

struct SimulatedCamera::World {
    World(Scheduler& itsScheduler, ports::WallClock& clock, Clocks itsClocks)
        : scheduler(itsScheduler), wallClock(clock), clocks(std::move(itsClocks))
    {
    }

    [[nodiscard]] Date timeOfDay() { return clocks(wallClock.now()); }

    Scheduler& scheduler;
    ports::WallClock& wallClock;
    const Clocks clocks;
    FaultSwitches faults{"input", "add-input", "add-output", "photo", "photo-data", "photo-twice", "start"};
    CafeScene scene;
    std::atomic<std::int64_t> lastPhotoId = 0;

    std::mutex mutex; // guards the rest
    ports::CaptureAuthorization authorization = ports::CaptureAuthorization::authorized;
    std::optional<bool> answer;
    std::vector<std::function<void(bool)>> prompts;
    int promptsShown = 0;
    std::vector<CameraModel> devices;
    std::string openedDevice;
    std::optional<double> brightness;
    int photoShare = 1;
    Duration photoDelay{};
    std::shared_ptr<const Bytes> photoFile; // none for the cafe
    const void* runningSession = nullptr;
    Instant startedAt;
    int sessionsStarted = 0;
    int photosRequested = 0;

    [[nodiscard]] bool isRunning(const void* session)
    {
        const std::lock_guard guard{mutex};
        return session != nullptr && runningSession == session;
    }
};

/// The output of photos of one session.
class SimulatedPhotoOutput final : public ports::PhotoOutput {
public:
    explicit SimulatedPhotoOutput(std::shared_ptr<SimulatedCamera::World> world) : world_(std::move(world)) {}

    void attach(const void* session) { session_ = session; }
    [[nodiscard]] bool isAttached() const { return session_ != nullptr; }
    void capturePhoto(const ports::PhotoSettings& settings,
                      std::weak_ptr<ports::PhotoOutputDelegate> delegate) override;

private:
    std::shared_ptr<SimulatedCamera::World> world_;
    const void* session_ = nullptr;
};

/// A session. Only one at a time can have the camera.
class SimulatedCaptureSession final : public ports::CaptureSession {
public:
    explicit SimulatedCaptureSession(std::shared_ptr<SimulatedCamera::World> world) : world_(std::move(world)) {}
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

    std::shared_ptr<SimulatedCamera::World> world_;
    std::string preset_;
    std::shared_ptr<ports::CaptureInput> input_;
    std::shared_ptr<SimulatedPhotoOutput> output_;
};

} // namespace sentrel::simulation
