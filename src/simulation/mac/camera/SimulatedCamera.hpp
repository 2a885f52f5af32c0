#pragma once

#include "foundation/Date.hpp"
#include "ports/Camera.hpp"
#include "ports/WallClock.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/Guarded.hpp"
#include "simulation/mac/camera/scene/CafeScene.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// One camera that is plugged in or built in.
struct CameraModel {
    std::string name = "FaceTime HD Camera";
    std::string type = "AVCaptureDeviceTypeBuiltInWideAngleCamera";
    bool isContinuityCamera = false;
    Duration adjustsExposureFor{};     ///< after its session has started
    Duration adjustsWhiteBalanceFor{}; ///< after its session has started
};

/// The view of the camera.
struct CameraView {
    std::shared_ptr<const Bytes> jpeg;
    std::optional<double> brightness; ///< 0 to 1; none for a file without a set brightness
    bool isFile = false;
};

/// State shared by the camera, its devices, sessions and photos under way.
struct CameraWorld {
    /// Maps a date to the local time shown by wall clocks.
    using Clocks = std::function<Date(Date)>;

    struct State {
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
    };

    CameraWorld(Scheduler& itsScheduler, ports::WallClock& clock, Clocks itsClocks)
        : scheduler(itsScheduler), wallClock(clock), clocks(std::move(itsClocks))
    {
    }

    [[nodiscard]] Date timeOfDay() const { return clocks(wallClock.now()); }

    Scheduler& scheduler;
    ports::WallClock& wallClock;
    const Clocks clocks;
    FaultSwitches faults{"input", "add-input", "add-output", "photo", "photo-data", "photo-twice", "start"};
    CafeScene scene;
    std::atomic<std::int64_t> lastPhotoId = 0;
    Guarded<State> state;
};

/// The cameras of the simulated MacBook, which stands in a cafe: authorised and without any device at first. The first
/// device is the system's default. A photo shows the cafe at the time of day, with a person at the Mac, or replays a
/// file. Any thread.
///
/// Faults: "input" (the device can't be opened), "add-input", "add-output" (the session refuses), "photo" (ends with an
/// error), "photo-data" (has no file representation), "photo-twice" (the delegate is told twice), "start" (the session
/// does not come to run).
class SimulatedCamera final : public ports::Camera {
public:
    SimulatedCamera(
        Scheduler& scheduler, ports::WallClock& wallClock, CameraWorld::Clocks clocks = [](Date date) { return date; })
        : world_(std::make_shared<CameraWorld>(scheduler, wallClock, std::move(clocks)))
    {
    }

    void setAuthorization(ports::CaptureAuthorization status) { world_->state->authorization = status; }

    /// Sets the user's answer to the system's prompt; none leaves it open until `answerPrompt`.
    void setAnswer(std::optional<bool> granted) { world_->state->answer = granted; }

    /// Answers the open prompt. False when none is open.
    bool answerPrompt(bool granted);

    /// Number of prompts so far.
    [[nodiscard]] int promptsShown() const { return world_->state->promptsShown; }

    void setDevices(std::vector<CameraModel> devices) { world_->state->devices = std::move(devices); }

    /// Brightness of a photo of the cafe, 0 to 1; none lets the time of day decide.
    void setBrightness(std::optional<double> brightness) { world_->state->brightness = brightness; }
    [[nodiscard]] std::optional<double> brightness() const { return world_->state->brightness; }

    /// Divides the sides of photos of the cafe; 1 at first. Small photos take little time.
    void setPhotoShare(int share) { world_->state->photoShare = share; }

    /// Time from a photo's request to its callback; 0 at first.
    void setPhotoDelay(Duration delay) { world_->state->photoDelay = delay; }

    /// Every photo is this file, unchanged; none for the cafe.
    void setPhotoFile(std::optional<Bytes> file);

    /// The current view, for display: the file, or a small picture of the cafe. The same object until something
    /// changes.
    [[nodiscard]] CameraView view() const;

    [[nodiscard]] FaultSwitches& faults() { return world_->faults; }

    /// The system takes the camera away, as it does for another application.
    void interruptSession() { world_->state->runningSession = nullptr; }
    [[nodiscard]] bool isSessionRunning() const { return world_->state->runningSession != nullptr; }

    /// Name of the device opened last; empty if none was.
    [[nodiscard]] std::string openedDevice() const { return world_->state->openedDevice; }

    /// Sessions started and photos asked for so far.
    [[nodiscard]] int sessionsStarted() const { return world_->state->sessionsStarted; }
    [[nodiscard]] int photosRequested() const { return world_->state->photosRequested; }

    [[nodiscard]] ports::CaptureAuthorization authorizationStatus(const std::string& mediaType) override;
    void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) override;
    [[nodiscard]] std::vector<std::shared_ptr<ports::CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureDevice> defaultDevice(const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureInput> makeInput(const ports::CaptureDevice& device) override;
    [[nodiscard]] std::unique_ptr<ports::CaptureSession> makeSession() override;
    [[nodiscard]] std::shared_ptr<ports::PhotoOutput> makePhotoOutput() override;
    [[nodiscard]] std::unique_ptr<ports::PhotoSettings> makePhotoSettings() override;

private:
    [[nodiscard]] ports::CaptureAuthorization authorizationOf(const std::string& mediaType) const;

    std::shared_ptr<CameraWorld> world_;
};

} // namespace sentrel::simulation
