#include "simulation/mac/camera/SimulatedCamera.hpp"

#include "simulation/mac/camera/SimulatedCaptureSession.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

using ports::CaptureAuthorization;
using World = SimulatedCamera::World;

constexpr auto videoType = "vide";

class SimulatedDevice final : public ports::CaptureDevice {
public:
    SimulatedDevice(std::shared_ptr<World> world, CameraModel model)
        : world_(std::move(world)), model_(std::move(model))
    {
    }

    [[nodiscard]] const std::string& name() const { return model_.name; }
    [[nodiscard]] std::string deviceType() const override { return model_.type; }
    [[nodiscard]] bool isContinuityCamera() const override { return model_.isContinuityCamera; }
    [[nodiscard]] bool isAdjustingExposure() const override
    {
        world_->faults.call("isAdjustingExposure");
        return isWithin(model_.adjustsExposureFor);
    }
    [[nodiscard]] bool isAdjustingWhiteBalance() const override { return isWithin(model_.adjustsWhiteBalanceFor); }

private:
    [[nodiscard]] bool isWithin(Duration span) const
    {
        const std::lock_guard guard{world_->mutex};
        return world_->runningSession != nullptr && world_->scheduler.now() < world_->startedAt + span;
    }

    std::shared_ptr<World> world_;
    CameraModel model_;
};

class CameraInput final : public ports::CaptureInput {};

class SimulatedPhotoSettings final : public ports::PhotoSettings {
public:
    explicit SimulatedPhotoSettings(std::int64_t id) : id_(id) {}
    [[nodiscard]] std::int64_t uniqueId() const override { return id_; }

private:
    std::int64_t id_;
};

/// Delivers an answer on another thread, as the system does.
void tell(World& world, std::function<void(bool)> answered, bool granted)
{
    post(world.scheduler.globalExecutor(QualityOfService::standard),
         [answered = std::move(answered), granted] { answered(granted); });
}

} // namespace

SimulatedCamera::SimulatedCamera(Scheduler& scheduler, ports::WallClock& wallClock, Clocks clocks)
    : world_(std::make_shared<World>(scheduler, wallClock, std::move(clocks)))
{
}

SimulatedCamera::~SimulatedCamera() = default;

void SimulatedCamera::setAuthorization(CaptureAuthorization status)
{
    const std::lock_guard guard{world_->mutex};
    world_->authorization = status;
}

void SimulatedCamera::setAnswer(std::optional<bool> granted)
{
    const std::lock_guard guard{world_->mutex};
    world_->answer = granted;
}

bool SimulatedCamera::answerPrompt(bool granted)
{
    std::vector<std::function<void(bool)>> prompts;
    {
        const std::lock_guard guard{world_->mutex};
        prompts.swap(world_->prompts);
        if (prompts.empty()) {
            return false;
        }
        world_->authorization = granted ? CaptureAuthorization::authorized : CaptureAuthorization::denied;
    }
    for (auto& answered : prompts) {
        tell(*world_, std::move(answered), granted);
    }
    return true;
}

int SimulatedCamera::promptsShown() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->promptsShown;
}

void SimulatedCamera::setDevices(std::vector<CameraModel> devices)
{
    const std::lock_guard guard{world_->mutex};
    world_->devices = std::move(devices);
}

void SimulatedCamera::setBrightness(std::optional<double> brightness)
{
    const std::lock_guard guard{world_->mutex};
    world_->brightness = brightness;
}

std::optional<double> SimulatedCamera::brightness() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->brightness;
}

void SimulatedCamera::setPhotoShare(int share)
{
    const std::lock_guard guard{world_->mutex};
    world_->photoShare = share;
}

void SimulatedCamera::setPhotoDelay(Duration delay)
{
    const std::lock_guard guard{world_->mutex};
    world_->photoDelay = delay;
}

void SimulatedCamera::setPhotoFile(std::optional<Bytes> file)
{
    const std::lock_guard guard{world_->mutex};
    world_->photoFile = file ? std::make_shared<const Bytes>(*std::move(file)) : nullptr;
}

CameraView SimulatedCamera::view() const
{
    std::optional<double> brightness;
    {
        const std::lock_guard guard{world_->mutex};
        brightness = world_->brightness;
        if (world_->photoFile) {
            return {world_->photoFile, brightness};
        }
    }
    const CafePreview preview = world_->scene.preview(world_->timeOfDay(), brightness);
    return {preview.jpeg, preview.brightness};
}

bool SimulatedCamera::hasPhotoFile() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->photoFile != nullptr;
}

FaultSwitches& SimulatedCamera::faults()
{
    return world_->faults;
}

void SimulatedCamera::interruptSession()
{
    const std::lock_guard guard{world_->mutex};
    world_->runningSession = nullptr;
}

bool SimulatedCamera::isSessionRunning() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->runningSession != nullptr;
}

std::string SimulatedCamera::openedDevice() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->openedDevice;
}

int SimulatedCamera::sessionsStarted() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->sessionsStarted;
}

int SimulatedCamera::photosRequested() const
{
    const std::lock_guard guard{world_->mutex};
    return world_->photosRequested;
}

CaptureAuthorization SimulatedCamera::authorizationStatus(const std::string& mediaType)
{
    world_->faults.call("authorizationStatus");
    return authorizationOf(mediaType);
}

CaptureAuthorization SimulatedCamera::authorizationOf(const std::string& mediaType) const
{
    const std::lock_guard guard{world_->mutex};
    return mediaType == videoType ? world_->authorization : CaptureAuthorization::denied;
}

void SimulatedCamera::requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered)
{
    world_->faults.call("requestAccess");
    const auto status = authorizationOf(mediaType);
    if (status != CaptureAuthorization::notDetermined) {
        tell(*world_, std::move(answered), status == CaptureAuthorization::authorized);
        return;
    }
    std::optional<bool> answer;
    {
        const std::lock_guard guard{world_->mutex};
        world_->promptsShown += world_->prompts.empty() ? 1 : 0; // requests share one prompt
        world_->prompts.push_back(std::move(answered));
        answer = world_->answer;
    }
    if (answer) {
        answerPrompt(*answer);
    }
}

std::vector<std::shared_ptr<ports::CaptureDevice>>
SimulatedCamera::discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType)
{
    world_->faults.call("discoverDevices");
    std::vector<std::shared_ptr<ports::CaptureDevice>> found;
    const std::lock_guard guard{world_->mutex};
    for (const CameraModel& model : world_->devices) {
        if (mediaType == videoType && std::ranges::find(deviceTypes, model.type) != deviceTypes.end()) {
            found.push_back(std::make_shared<SimulatedDevice>(world_, model));
        }
    }
    return found;
}

std::shared_ptr<ports::CaptureDevice> SimulatedCamera::defaultDevice(const std::string& mediaType)
{
    world_->faults.call("defaultDevice");
    const std::lock_guard guard{world_->mutex};
    if (mediaType != videoType || world_->devices.empty()) {
        return nullptr;
    }
    return std::make_shared<SimulatedDevice>(world_, world_->devices.front());
}

std::shared_ptr<ports::CaptureInput> SimulatedCamera::makeInput(const ports::CaptureDevice& device)
{
    world_->faults.call("makeInput");
    if (world_->faults.strikes("input")) {
        return nullptr;
    }
    const std::lock_guard guard{world_->mutex};
    world_->openedDevice = static_cast<const SimulatedDevice&>(device).name();
    return std::make_shared<CameraInput>();
}

std::unique_ptr<ports::CaptureSession> SimulatedCamera::makeSession()
{
    world_->faults.call("makeSession");
    return std::make_unique<SimulatedCaptureSession>(world_);
}

std::shared_ptr<ports::PhotoOutput> SimulatedCamera::makePhotoOutput()
{
    world_->faults.call("makePhotoOutput");
    return std::make_shared<SimulatedPhotoOutput>(world_);
}

std::unique_ptr<ports::PhotoSettings> SimulatedCamera::makePhotoSettings()
{
    world_->faults.call("makePhotoSettings");
    return std::make_unique<SimulatedPhotoSettings>(++world_->lastPhotoId);
}

} // namespace sentrel::simulation
