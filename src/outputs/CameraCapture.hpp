#pragma once

#include "outputs/CaptureWorker.hpp"
#include "runtime/Answer.hpp"

namespace sentrel {

/// The camera as the alarm uses it. Main actor.
class CameraCapture {
public:
    CameraCapture(Scheduler& scheduler, ports::Camera& camera, ports::ImageCodec& codec, ports::StandardOutput& output,
                  ports::Journal& journal);

    /// Whether the user allows the camera. Shows the system's prompt if they were never asked, and then waits for the
    /// answer; a refusal is not asked again.
    Async<bool> requestAccess();

    /// Takes one photo. The completion is called once, on the worker's queue, with a JPEG or without data.
    void capture(CaptureWorker::Completion completion);

    /// The same as an awaitable call, but for at most 30 seconds: a camera system that hangs costs the photo, not the
    /// alert. A photo that comes later is dropped. As long as the worker still owes one, further calls give none at
    /// once. A task that is cancelled meanwhile ends the wait, not the capture.
    Async<std::optional<Bytes>> capturePhoto();

private:
    using PhotoAnswer = Answer<std::optional<Bytes>>;

    Scheduler& scheduler_;
    ports::Journal& journal_;
    ports::Camera& camera_;
    std::shared_ptr<PhotoAnswer> overdue_; // the one that missed its deadline; the worker takes one at a time
    CaptureWorker worker_;
};

} // namespace sentrel
