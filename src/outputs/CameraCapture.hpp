#pragma once

#include "outputs/CaptureWorker.hpp"
#include "runtime/Answer.hpp"

namespace sentrel {

/// The camera as the alarm uses it. Main actor.
class CameraCapture {
public:
    CameraCapture(Scheduler& scheduler, ports::Camera& camera, ports::ImageCodec& codec, ports::StandardOutput& output,
                  ports::Journal& journal);

    /// True when the user allows the camera. If the user was never asked, shows the system's prompt and waits for the
    /// answer; doesn't ask again after a refusal.
    Async<bool> requestAccess();

    /// Takes one photo. The completion is called once, on the worker's queue, with a JPEG or without data.
    void capture(CaptureWorker::Completion completion);

    /// Takes one photo; none after a failure, or after 30 s: a camera system that hangs costs the photo, not the alert.
    /// A photo that comes later is dropped, and until it comes further calls return none at once. Cancelling the task
    /// ends the wait, not the capture.
    Async<std::optional<Bytes>> capturePhoto();

private:
    using PhotoAnswer = Answer<std::optional<Bytes>>;

    Scheduler& scheduler_;
    ports::Journal& journal_;
    ports::Camera& camera_;
    std::shared_ptr<PhotoAnswer> overdue_; // the latest answer that missed its deadline
    CaptureWorker worker_;
};

} // namespace sentrel
