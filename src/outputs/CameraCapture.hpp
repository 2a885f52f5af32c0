#pragma once

#include "outputs/CaptureWorker.hpp"

namespace sentrel {

/// The camera as the alarm uses it. Main actor.
class CameraCapture {
public:
    CameraCapture(Scheduler& scheduler, platform::Camera& camera, platform::ImageCodec& codec,
                  platform::StandardOutput& output, platform::Journal& journal);

    /// Whether the user allows the camera. Shows the system's prompt if they were never asked, and then waits for the
    /// answer; a refusal is not asked again.
    Async<bool> requestAccess();

    /// Takes one photo. The completion is called once, on the worker's queue, with a JPEG or without data.
    void capture(CaptureWorker::Completion completion);

    /// The same as an awaitable call. A task that is cancelled meanwhile ends the wait, not the capture.
    Async<std::optional<Bytes>> capturePhoto();

private:
    platform::Camera& camera_;
    CaptureWorker worker_;
};

} // namespace sentrel
