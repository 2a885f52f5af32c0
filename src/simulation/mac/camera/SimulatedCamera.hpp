#pragma once

#include "foundation/Date.hpp"
#include "ports/Camera.hpp"
#include "ports/WallClock.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
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
};

/// The cameras of the simulated MacBook, which stands in a cafe: authorised and without any device at first. The first
/// device is the system's default. A photo shows the cafe at the time of day, with a person at the Mac, or replays a
/// file. Any thread.
class SimulatedCamera final : public ports::Camera {
public:
    /// Maps a date to the local time shown by wall clocks.
    using Clocks = std::function<Date(Date)>;

    SimulatedCamera(Scheduler& scheduler, ports::WallClock& wallClock, Clocks clocks = [](Date date) { return date; });
    ~SimulatedCamera() override;

    void setAuthorization(ports::CaptureAuthorization status);

    /// Sets the user's answer to the system's prompt; none leaves it open until `answerPrompt`.
    void setAnswer(std::optional<bool> granted);

    /// Answers the open prompt. False when none is open.
    bool answerPrompt(bool granted);

    /// Number of prompts so far.
    [[nodiscard]] int promptsShown() const;

    void setDevices(std::vector<CameraModel> devices);

    /// Brightness of a photo of the cafe, 0 to 1; none lets the time of day decide.
    void setBrightness(std::optional<double> brightness);
    [[nodiscard]] std::optional<double> brightness() const;

    /// Divides the sides of photos of the cafe; 1 at first. Small photos take little time.
    void setPhotoShare(int share);

    /// Time from a photo's request to its callback; 0 at first.
    void setPhotoDelay(Duration delay);

    /// Every photo is this file, unchanged; none for the cafe.
    void setPhotoFile(std::optional<Bytes> file);
    [[nodiscard]] bool hasPhotoFile() const;

    /// The current view, for display: the file, or a small picture of the cafe. The same object until something
    /// changes.
    [[nodiscard]] CameraView view() const;

    /// Faults: "input" (the device can't be opened), "add-input", "add-output" (the session refuses), "photo" (ends
    /// with an error), "photo-data" (has no file representation), "photo-twice" (the delegate is told twice), "start"
    /// (the session does not come to run).
    [[nodiscard]] FaultSwitches& faults();

    /// The system takes the camera away, as it does for another application.
    void interruptSession();
    [[nodiscard]] bool isSessionRunning() const;

    /// Name of the device opened last; empty if none was.
    [[nodiscard]] std::string openedDevice() const;

    /// Sessions started and photos asked for so far.
    [[nodiscard]] int sessionsStarted() const;
    [[nodiscard]] int photosRequested() const;

    [[nodiscard]] ports::CaptureAuthorization authorizationStatus(const std::string& mediaType) override;
    void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) override;
    [[nodiscard]] std::vector<std::shared_ptr<ports::CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureDevice> defaultDevice(const std::string& mediaType) override;
    [[nodiscard]] std::shared_ptr<ports::CaptureInput> makeInput(const ports::CaptureDevice& device) override;
    [[nodiscard]] std::unique_ptr<ports::CaptureSession> makeSession() override;
    [[nodiscard]] std::shared_ptr<ports::PhotoOutput> makePhotoOutput() override;
    [[nodiscard]] std::unique_ptr<ports::PhotoSettings> makePhotoSettings() override;

    /// State shared by the camera, its devices, sessions and photos under way.
    struct World;

private:
    [[nodiscard]] ports::CaptureAuthorization authorizationOf(const std::string& mediaType) const;

    std::shared_ptr<World> world_;
};

} // namespace sentrel::simulation
