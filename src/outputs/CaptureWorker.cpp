#include "outputs/CaptureWorker.hpp"

#include "core/Events.hpp"
#include "foundation/Quietly.hpp"
#include "outputs/PhotoProcessing.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"

#include <string>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

using ports::builtInCameraType;
using ports::photoPreset;

constexpr Duration warmUpAtLeast = 1s;
constexpr Duration warmUpAtMost = 3s;
constexpr Duration warmUpPoll = 100ms;
constexpr Duration photoTimeout = 5s;
constexpr Duration abandonedDelegateLife = 30s;
constexpr Duration retakePause = 1200ms;
constexpr Duration shutdownDelay = 15s;
constexpr double tooDark = 0.08; // brightness, 0 to 1
constexpr int mostPhotos = 3;    // in one capture

} // namespace

/// Receives a photo. A photo that arrives after the wait has ended is never read.
struct CaptureWorker::ResultBox {
    std::optional<Bytes> photo;
    Semaphore arrived;
};

CaptureWorker::CaptureWorker(Scheduler& scheduler, ports::Camera& camera, ports::ImageCodec& codec,
                             ports::StandardOutput& output, ports::Journal& journal)
    : scheduler_(scheduler),
      camera_(camera),
      codec_(codec),
      standardOutput_(output),
      journal_(journal),
      queue_(scheduler, "sentrel.camera-capture", QualityOfService::userInitiated)
{
}

CaptureWorker::~CaptureWorker() = default;

void CaptureWorker::capture(Completion completion)
{
    queue_.async(runCapture(std::move(completion)));
}

Async<void> CaptureWorker::runCapture(Completion completion)
{
    Shot shot;
    try {
        shot = co_await takeKeptPhoto();
    } catch (...) {
        shot.failure = "raised";
    }
    // Also after a failure, or the camera would stay on until the next capture.
    if (session_) {
        scheduleShutdown();
    }
    if (!shot.photo) {
        journal_.note(events::NoPhoto{shot.failure});
        completion(std::nullopt);
        co_return;
    }
    auto jpeg = reencodedPhoto(codec_, *std::move(shot.photo));
    noteTaken(jpeg, shot.attempts);
    completion(std::move(jpeg));
}

/// Runs a capture up to the photo that is kept: permission, session, photo, and retakes while it is too dark.
Async<CaptureWorker::Shot> CaptureWorker::takeKeptPhoto()
{
    Shot kept;
    if (camera_.authorizationStatus(videoMediaType) != ports::CaptureAuthorization::authorized) {
        kept.failure = "not authorized"; // never prompt here: the user isn't there to answer
        co_return kept;
    }
    kept.failure = co_await ensureSession();
    if (!kept.failure.empty()) {
        co_return kept;
    }
    kept = co_await takePhoto();
    if (!kept.photo) {
        co_return kept;
    }
    kept.attempts = 1;
    while (photoBrightness(codec_, *kept.photo) < tooDark && kept.attempts < mostPhotos) {
        co_await sleepFor(retakePause);
        auto retake = co_await takePhoto();
        if (!retake.photo) {
            break;
        }
        kept.photo = std::move(retake.photo);
        ++kept.attempts;
    }
    co_return kept;
}

Async<std::string_view> CaptureWorker::ensureSession()
{
    if (shutdownWorkItem_) {
        std::exchange(shutdownWorkItem_, nullptr)->cancel();
    }
    if (session_ && quietly([this] { return session_->isRunning(); })) {
        co_return std::string_view{};
    }
    const auto device = chooseCamera();
    if (!device) {
        co_return std::string_view{"no camera"};
    }
    const auto failure = buildSession(*device);
    if (failure.empty()) {
        co_await warmUp(device);
    }
    co_return failure;
}

std::shared_ptr<ports::CaptureDevice> CaptureWorker::chooseCamera()
{
    const auto devices = camera_.discoverDevices({builtInCameraType}, videoMediaType);
    for (const auto& device : devices) {
        if (device->deviceType() == builtInCameraType && !device->isContinuityCamera()) {
            return device;
        }
    }
    return devices.empty() ? camera_.defaultDevice(videoMediaType) : devices.front();
}

std::string_view CaptureWorker::buildSession(const ports::CaptureDevice& device)
{
    auto session = camera_.makeSession();
    session->setPreset(photoPreset);
    const auto input = camera_.makeInput(device);
    if (!input) {
        return "no input";
    }
    if (!session->canAddInput(*input)) {
        return "input refused";
    }
    session->addInput(input);
    auto output = camera_.makePhotoOutput();
    if (!session->canAddOutput(*output)) {
        return "output refused";
    }
    session->addOutput(output);
    session->startRunning();
    session_ = std::move(session);
    output_ = std::move(output);
    return {};
}

/// Waits for exposure and white balance to settle: at least 1 s, at most 3 s.
Async<void> CaptureWorker::warmUp(std::shared_ptr<ports::CaptureDevice> device)
{
    const Instant deadline = scheduler_.now() + warmUpAtMost;
    co_await sleepFor(warmUpAtLeast);
    const auto isAdjusting = [&device] { return device->isAdjustingExposure() || device->isAdjustingWhiteBalance(); };
    while (quietly(isAdjusting) && scheduler_.now() < deadline) {
        co_await sleepFor(warmUpPoll);
    }
}

Async<CaptureWorker::Shot> CaptureWorker::takePhoto()
{
    Shot shot;
    const auto settings = quietly([this] { return camera_.makePhotoSettings(); });
    if (!settings) {
        shot.failure = "no settings";
        co_return shot;
    }
    const auto id = settings->uniqueId();
    const auto box = std::make_shared<ResultBox>();
    const auto delegate = makeDelegate(id, box);
    {
        const std::lock_guard guard{inFlight_->delegateLock};
        inFlight_->delegates[id] = delegate;
    }
    if (!ask(*settings, delegate)) {
        const std::lock_guard guard{inFlight_->delegateLock};
        inFlight_->delegates.erase(id);
        shot.failure = "photo raised";
        co_return shot;
    }

    const bool arrived = co_await box->arrived.waitUntil(scheduler_.now() + photoTimeout);
    if (!arrived) {
        // A late callback must still find its delegate, but a delegate must not wait for ever.
        detached(scheduler_, QualityOfService::standard, forgetLater(inFlight_, id));
    }
    const std::lock_guard guard{inFlight_->delegateLock};
    shot.photo = std::move(box->photo);
    shot.failure = arrived ? "photo failed" : "timed out";
    co_return shot;
}

/// False when the output throws, as it does after losing its camera.
bool CaptureWorker::ask(const ports::PhotoSettings& settings, const std::shared_ptr<PhotoCaptureDelegate>& delegate)
{
    return quietly([&] {
        output_->capturePhoto(settings, delegate);
        return true;
    });
}

std::shared_ptr<PhotoCaptureDelegate> CaptureWorker::makeDelegate(std::int64_t id, std::shared_ptr<ResultBox> box)
{
    // Weak, because `InFlight` owns the delegate and thereby this function.
    auto receive = [weakInFlight = std::weak_ptr{inFlight_}, box = std::move(box), id](std::optional<Bytes> photo) {
        if (const auto inFlight = weakInFlight.lock()) {
            const std::lock_guard guard{inFlight->delegateLock};
            box->photo = std::move(photo);
            inFlight->delegates.erase(id);
        }
        box->arrived.signal();
    };
    return std::make_shared<PhotoCaptureDelegate>(standardOutput_, std::move(receive));
}

Async<void> CaptureWorker::forgetLater(std::weak_ptr<InFlight> weakInFlight, std::int64_t id)
{
    co_await sleepFor(abandonedDelegateLife);
    if (const auto inFlight = weakInFlight.lock()) {
        const std::lock_guard guard{inFlight->delegateLock};
        inFlight->delegates.erase(id);
    }
}

void CaptureWorker::scheduleShutdown()
{
    if (shutdownWorkItem_) {
        shutdownWorkItem_->cancel();
    }
    shutdownWorkItem_ = std::make_shared<WorkItem>([weakSelf = anchor_.weak()] {
        if (CaptureWorker* const self = weakSelf.get()) {
            self->shutDown();
        }
    });
    queue_.asyncAfter(shutdownDelay, shutdownWorkItem_);
}

void CaptureWorker::shutDown()
{
    if (session_) {
        quietly([this] {
            if (session_->isRunning()) {
                session_->stopRunning();
            }
        });
    }
    session_.reset();
    output_.reset();
    shutdownWorkItem_.reset();
}

void CaptureWorker::noteTaken(const Bytes& jpeg, int attempts)
{
    events::PhotoTaken taken{
        .bytes = static_cast<std::int64_t>(jpeg.size()), .width = {}, .height = {}, .attempts = attempts};
    if (const auto size = quietly([&] { return codec_.pixelSize(jpeg); })) {
        taken.width = size->width;
        taken.height = size->height;
    }
    journal_.note(taken);
}

} // namespace sentrel
