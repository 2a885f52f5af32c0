#pragma once

#include "outputs/PhotoCaptureDelegate.hpp"
#include "ports/Camera.hpp"
#include "ports/CameraConstants.hpp"
#include "ports/ImageCodec.hpp"
#include "ports/Journal.hpp"
#include "ports/StandardOutput.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Weak.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

namespace sentrel {

using ports::videoMediaType;

/// Takes photos, one capture after another on its own queue, which is held for the whole capture. The session stays
/// warm between captures and is shut down 15 s after the last one.
class CaptureWorker {
public:
    using Completion = std::function<void(std::optional<Bytes> jpeg)>;

    CaptureWorker(Scheduler& scheduler, ports::Camera& camera, ports::ImageCodec& codec, ports::StandardOutput& output,
                  ports::Journal& journal);

    /// Stops the camera. A capture under way is given up: its completion is not called.
    ~CaptureWorker();
    CaptureWorker(const CaptureWorker&) = delete;
    CaptureWorker& operator=(const CaptureWorker&) = delete;

    /// Enqueues a capture. The completion is called once, on the queue, without data after any failure or exception.
    /// Any thread.
    void capture(Completion completion);

private:
    /// A photo, or the reason why there is none.
    struct Shot {
        std::optional<Bytes> photo;
        std::string_view failure;
        int attempts = 0; ///< photos taken, retakes included
    };

    /// Delegates that still wait for their photo, by the unique identifier of their settings. Shared with callbacks
    /// that may come after the worker is destroyed.
    struct InFlight {
        std::mutex delegateLock; // guards the delegates and all result boxes
        std::map<std::int64_t, std::shared_ptr<PhotoCaptureDelegate>> delegates;
    };
    struct ResultBox;

    Async<void> runCapture(Completion completion);
    Async<Shot> takeKeptPhoto();

    /// Ensures a running session and warms up a new one. Returns the reason of a failure; empty on success.
    Async<std::string_view> ensureSession();
    [[nodiscard]] std::shared_ptr<ports::CaptureDevice> chooseCamera();

    /// Makes, starts and keeps a session for the camera. Returns the reason of a failure; empty on success.
    [[nodiscard]] std::string_view buildSession(const ports::CaptureDevice& device);
    Async<void> warmUp(std::shared_ptr<ports::CaptureDevice> device);
    Async<Shot> takePhoto();
    [[nodiscard]] bool ask(const ports::PhotoSettings& settings, const std::shared_ptr<PhotoCaptureDelegate>& delegate);
    [[nodiscard]] std::shared_ptr<PhotoCaptureDelegate> makeDelegate(std::int64_t id, std::shared_ptr<ResultBox> box);
    static Async<void> forgetLater(std::weak_ptr<InFlight> weakInFlight, std::int64_t id);
    void scheduleShutdown();
    void shutDown();
    void noteTaken(const Bytes& jpeg, int attempts);

    Scheduler& scheduler_;
    ports::Camera& camera_;
    ports::ImageCodec& codec_;
    ports::StandardOutput& standardOutput_;
    ports::Journal& journal_;
    std::unique_ptr<ports::CaptureSession> session_;
    std::shared_ptr<ports::PhotoOutput> output_;
    std::shared_ptr<WorkItem> shutdownWorkItem_;
    std::shared_ptr<InFlight> inFlight_ = std::make_shared<InFlight>();
    WeakAnchor<CaptureWorker> anchor_{*this}; // read on the queue, so destroyed after it
    SerialQueue queue_;                       // last: its destructor waits for the running job, which uses the rest
};

} // namespace sentrel
