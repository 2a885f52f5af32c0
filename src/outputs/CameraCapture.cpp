#include "outputs/CameraCapture.hpp"

#include "core/Events.hpp"

#include <memory>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

/// Exceeds the longest capture: 3 s of warm-up, three photos of at most 5 s and two pauses of 1.2 s.
constexpr Duration longestCapture = 30s;

} // namespace

CameraCapture::CameraCapture(Scheduler& scheduler, ports::Camera& camera, ports::ImageCodec& codec,
                             ports::StandardOutput& output, ports::Journal& journal)
    : scheduler_(scheduler), journal_(journal), camera_(camera), worker_(scheduler, camera, codec, output, journal)
{
}

Async<bool> CameraCapture::requestAccess()
{
    const auto status = camera_.authorizationStatus(videoMediaType);
    if (status != ports::CaptureAuthorization::notDetermined) {
        co_return status == ports::CaptureAuthorization::authorized;
    }
    const auto answer = std::make_shared<Answer<bool>>();
    camera_.requestAccess(videoMediaType, [answer](bool granted) { answer->give(granted); });
    co_await answer->given().wait();
    co_return answer->take();
}

void CameraCapture::capture(CaptureWorker::Completion completion)
{
    worker_.capture(std::move(completion));
}

Async<std::optional<Bytes>> CameraCapture::capturePhoto()
{
    if (overdue_ && !overdue_->isGiven()) {
        journal_.note(events::NoPhoto{"the camera hangs"});
        co_return std::nullopt;
    }
    const auto answer = std::make_shared<PhotoAnswer>();
    capture([answer](std::optional<Bytes> jpeg) { answer->give(std::move(jpeg)); });
    const bool isInTime = co_await answer->given().waitUntil(scheduler_.now() + longestCapture);
    if (!isInTime) {
        overdue_ = answer;
        journal_.note(events::NoPhoto{"the camera hangs"});
        co_return std::nullopt;
    }
    co_return answer->take();
}

} // namespace sentrel
