#include "outputs/CameraCapture.hpp"

#include "runtime/Semaphore.hpp"

#include <memory>
#include <utility>

namespace sentrel {

namespace {

/// An answer that comes on another thread, perhaps when nobody waits any more.
template <class T> struct Answer {
    T value{};
    Semaphore given;

    void give(T answer)
    {
        value = std::move(answer);
        given.signal();
    }
};

} // namespace

CameraCapture::CameraCapture(Scheduler& scheduler, platform::Camera& camera, platform::ImageCodec& codec,
                             platform::StandardOutput& output, platform::Journal& journal)
    : camera_(camera), worker_(scheduler, camera, codec, output, journal)
{
}

Async<bool> CameraCapture::requestAccess()
{
    const auto status = camera_.authorizationStatus(videoMediaType);
    if (status != platform::CaptureAuthorization::notDetermined) {
        co_return status == platform::CaptureAuthorization::authorized;
    }
    const auto answer = std::make_shared<Answer<bool>>();
    camera_.requestAccess(videoMediaType, [answer](bool granted) { answer->give(granted); });
    co_await answer->given.wait();
    co_return answer->value;
}

void CameraCapture::capture(CaptureWorker::Completion completion)
{
    worker_.capture(std::move(completion));
}

Async<std::optional<Bytes>> CameraCapture::capturePhoto()
{
    const auto answer = std::make_shared<Answer<std::optional<Bytes>>>();
    capture([answer](std::optional<Bytes> jpeg) { answer->give(std::move(jpeg)); });
    co_await answer->given.wait();
    co_return std::move(answer->value);
}

} // namespace sentrel
