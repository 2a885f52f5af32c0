#include "simulation/mac/camera/SimulatedCaptureSession.hpp"

#include "runtime/Detached.hpp"
#include "runtime/Sleep.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

using World = CameraWorld;

/// A photo as of its request. The cafe is drawn only when the data is read.
class SimulatedPhoto final : public ports::CapturedPhoto {
public:
    explicit SimulatedPhoto(std::shared_ptr<World> world) : world_(std::move(world)), timeOfDay_(world_->timeOfDay())
    {
        const auto state = world_->state.lock();
        brightness_ = state->brightness;
        share_ = state->photoShare;
        file_ = state->photoFile;
    }

    [[nodiscard]] std::optional<Bytes> fileDataRepresentation() const override
    {
        if (world_->faults.strikes("photo-data")) {
            return std::nullopt;
        }
        return file_ ? *file_ : world_->scene.photograph(timeOfDay_, brightness_, share_);
    }

    /// Number of times that the delegate is told of the photo.
    [[nodiscard]] int answers() const { return world_->faults.strikes("photo-twice") ? 2 : 1; }

private:
    std::shared_ptr<World> world_;
    Date timeOfDay_;
    std::optional<double> brightness_;
    int share_ = 1;
    std::shared_ptr<const Bytes> file_;
};

Async<void> deliver(std::shared_ptr<SimulatedPhoto> photo, Duration delay, std::optional<std::string> error,
                    std::weak_ptr<ports::PhotoOutputDelegate> delegate)
{
    co_await sleepFor(delay);
    if (const auto alive = delegate.lock()) {
        for (int answers = photo->answers(); answers > 0; --answers) {
            alive->didFinishProcessingPhoto(*photo, error);
        }
    }
}

} // namespace

void SimulatedPhotoOutput::capturePhoto(const ports::PhotoSettings& /*settings*/,
                                        std::weak_ptr<ports::PhotoOutputDelegate> delegate)
{
    world_->faults.call("capturePhoto");
    Duration delay{};
    bool isRunning = false;
    {
        const auto state = world_->state.lock();
        ++state->photosRequested;
        delay = state->photoDelay;
        isRunning = session_ != nullptr && state->runningSession == session_;
    }
    std::optional<std::string> error;
    if (!isRunning) {
        error = "The session is not running.";
    } else if (world_->faults.strikes("photo")) {
        error = "Cannot Complete Action";
    }
    auto photo = std::make_shared<SimulatedPhoto>(world_);
    detached(world_->scheduler, QualityOfService::userInitiated,
             deliver(std::move(photo), delay, std::move(error), std::move(delegate)));
}

SimulatedCaptureSession::~SimulatedCaptureSession()
{
    stop();
    if (output_) {
        output_->attach(nullptr);
    }
}

bool SimulatedCaptureSession::canAddInput(const ports::CaptureInput& /*input*/)
{
    world_->faults.call("canAddInput");
    return !world_->faults.strikes("add-input") && !input_;
}

bool SimulatedCaptureSession::canAddOutput(const ports::PhotoOutput& output)
{
    world_->faults.call("canAddOutput");
    return !world_->faults.strikes("add-output") && !output_ &&
           !static_cast<const SimulatedPhotoOutput&>(output).isAttached();
}

void SimulatedCaptureSession::addOutput(std::shared_ptr<ports::PhotoOutput> output)
{
    world_->faults.call("addOutput");
    output_ = std::static_pointer_cast<SimulatedPhotoOutput>(std::move(output));
    output_->attach(this);
}

void SimulatedCaptureSession::startRunning()
{
    world_->faults.call("startRunning");
    const bool isComplete = input_ && output_ && preset_ == "AVCaptureSessionPresetPhoto";
    if (!isComplete || world_->faults.strikes("start")) {
        return;
    }
    const auto state = world_->state.lock();
    state->runningSession = this;
    state->startedAt = world_->scheduler.now();
    ++state->sessionsStarted;
}

void SimulatedCaptureSession::stopRunning()
{
    world_->faults.call("stopRunning");
    stop();
}

bool SimulatedCaptureSession::isRunning() const
{
    world_->faults.call("isRunning");
    return world_->state->runningSession == this;
}

void SimulatedCaptureSession::stop()
{
    const auto state = world_->state.lock();
    if (state->runningSession == this) {
        state->runningSession = nullptr;
    }
}

} // namespace sentrel::simulation
