#include "ports/Camera.hpp"
#include "ports/CameraConstants.hpp"
#include "ports/ImageCodec.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"
#include "selftest/Steps.hpp"

#include <atomic>
#include <memory>
#include <mutex>

namespace sentrel::selftest {

namespace {

using namespace std::chrono_literals;

constexpr Duration warmUp = 2s;
constexpr Duration longestPhoto = 10s;

/// The answer to the system's question for the camera, shared with its callback.
struct Access {
    Semaphore answered;
    std::atomic<bool> isGranted = false;
};

/// Keeps the photo. Any thread.
class Receiver final : public ports::PhotoOutputDelegate {
public:
    void didFinishProcessingPhoto(const ports::CapturedPhoto& photo, std::optional<std::string> error) override
    {
        {
            const std::lock_guard guard{mutex_};
            error_ = std::move(error);
            photo_ = error_ ? std::nullopt : photo.fileDataRepresentation();
        }
        arrived.signal();
    }

    /// The photo, or the reason why there is none.
    std::pair<std::optional<Bytes>, std::string> take()
    {
        const std::lock_guard guard{mutex_};
        return {std::move(photo_), error_.value_or("the photo has no data")};
    }

    Semaphore arrived;

private:
    std::mutex mutex_;
    std::optional<Bytes> photo_;
    std::optional<std::string> error_;
};

std::shared_ptr<ports::CaptureDevice> chooseCamera(ports::Camera& camera)
{
    const auto devices = camera.discoverDevices({ports::builtInCameraType}, ports::videoMediaType);
    return devices.empty() ? camera.defaultDevice(ports::videoMediaType) : devices.front();
}

/// A running session with the output; null when a part is refused.
std::unique_ptr<ports::CaptureSession> startSession(ports::Camera& camera, const ports::CaptureDevice& device,
                                                    const std::shared_ptr<ports::PhotoOutput>& output)
{
    auto session = camera.makeSession();
    session->setPreset(ports::photoPreset);
    const auto input = camera.makeInput(device);
    if (input == nullptr || !session->canAddInput(*input)) {
        return nullptr;
    }
    session->addInput(input);
    if (!session->canAddOutput(*output)) {
        return nullptr;
    }
    session->addOutput(output);
    session->startRunning();
    return session;
}

Async<bool> mayTakePhotos(const Bench& bench)
{
    ports::Camera& camera = bench.platform.camera;
    const auto status = camera.authorizationStatus(ports::videoMediaType);
    if (status != ports::CaptureAuthorization::notDetermined) {
        co_return status == ports::CaptureAuthorization::authorized;
    }
    const auto access = std::make_shared<Access>();
    camera.requestAccess(ports::videoMediaType, [access](bool isGranted) {
        access->isGranted = isGranted;
        access->answered.signal();
    });
    co_await access->answered.wait();
    co_return access->isGranted.load();
}

} // namespace

Async<Outcome> checkPhoto(const Bench& bench)
{
    ports::Camera& camera = bench.platform.camera;
    const bool mayTake = co_await mayTakePhotos(bench);
    if (!mayTake) {
        co_return Outcome{Verdict::ask, "the camera is not allowed"};
    }
    const auto device = chooseCamera(camera);
    if (device == nullptr) {
        co_return Outcome{Verdict::fail, "no camera"};
    }
    const auto output = camera.makePhotoOutput();
    const auto session = startSession(camera, *device, output);
    if (session == nullptr) {
        co_return Outcome{Verdict::fail, "the camera can't be connected"};
    }
    co_await sleepFor(warmUp);
    const auto settings = camera.makePhotoSettings();
    const auto receiver = std::make_shared<Receiver>();
    output->capturePhoto(*settings, receiver);
    const bool hasArrived = co_await receiver->arrived.waitUntil(bench.platform.scheduler.now() + longestPhoto);
    session->stopRunning();
    if (!hasArrived) {
        co_return Outcome{Verdict::fail, "the camera gives no photo within 10 s"};
    }
    const auto [photo, failure] = receiver->take();
    if (!photo) {
        co_return Outcome{Verdict::fail, failure};
    }
    const auto size = bench.platform.imageCodec.pixelSize(*photo);
    if (!size) {
        co_return Outcome{Verdict::fail, "the photo can't be read"};
    }
    co_return Outcome{Verdict::pass, std::to_string(size->width) + " by " + std::to_string(size->height) + " pixels, " +
                                         std::to_string(photo->size() / 1000) + " kB"};
}

} // namespace sentrel::selftest
