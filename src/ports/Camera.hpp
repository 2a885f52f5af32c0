#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::ports {

/// The user's permission (`AVAuthorizationStatus`).
enum class CaptureAuthorization : std::int32_t { notDetermined = 0, restricted = 1, denied = 2, authorized = 3 };

/// A camera (`AVCaptureDevice`). Any thread.
class CaptureDevice {
public:
    virtual ~CaptureDevice() = default;
    [[nodiscard]] virtual std::string deviceType() const = 0;
    [[nodiscard]] virtual bool isContinuityCamera() const = 0; ///< a phone used as a webcam
    [[nodiscard]] virtual bool isAdjustingExposure() const = 0;
    [[nodiscard]] virtual bool isAdjustingWhiteBalance() const = 0;
};

/// A camera as a session's input (`AVCaptureDeviceInput`).
class CaptureInput {
public:
    virtual ~CaptureInput() = default;
};

/// Settings of one photo (`AVCapturePhotoSettings`).
class PhotoSettings {
public:
    virtual ~PhotoSettings() = default;
    [[nodiscard]] virtual std::int64_t uniqueId() const = 0;
};

/// A taken photo (`AVCapturePhoto`); valid during its delegate's call only.
class CapturedPhoto {
public:
    virtual ~CapturedPhoto() = default;

    /// The photo as a file (`fileDataRepresentation`); none when it can't be made.
    [[nodiscard]] virtual std::optional<Bytes> fileDataRepresentation() const = 0;
};

/// Receiver of a photo (`AVCapturePhotoCaptureDelegate`).
class PhotoOutputDelegate {
public:
    virtual ~PhotoOutputDelegate() = default;

    /// Called when the photo has been processed or has failed with this error, on any thread and however late.
    virtual void didFinishProcessingPhoto(const CapturedPhoto& photo, std::optional<std::string> error) = 0;

    /// Keeps the system's own object for this delegate alive as long as the delegate. For adapters, before the first
    /// callback can come.
    void keepCounterpart(std::shared_ptr<void> counterpart) { counterpart_ = std::move(counterpart); }

private:
    std::shared_ptr<void> counterpart_;
};

/// A session's output of photos (`AVCapturePhotoOutput`). Used on one queue.
class PhotoOutput {
public:
    virtual ~PhotoOutput() = default;

    /// Asks for one photo (`capturePhotoWithSettings:delegate:`). The output doesn't keep the delegate alive; without
    /// its delegate, a photo is dropped.
    virtual void capturePhoto(const PhotoSettings& settings, std::weak_ptr<PhotoOutputDelegate> delegate) = 0;
};

/// A session that connects a camera to an output (`AVCaptureSession`). Used on one queue; the destructor stops it.
class CaptureSession {
public:
    virtual ~CaptureSession() = default;
    virtual void setPreset(const std::string& preset) = 0;
    [[nodiscard]] virtual bool canAddInput(const CaptureInput& input) = 0;
    virtual void addInput(std::shared_ptr<CaptureInput> input) = 0;
    [[nodiscard]] virtual bool canAddOutput(const PhotoOutput& output) = 0;
    virtual void addOutput(std::shared_ptr<PhotoOutput> output) = 0;
    virtual void startRunning() = 0;
    virtual void stopRunning() = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;
};

/// The cameras and the permission to use them. Any thread.
class Camera {
public:
    virtual ~Camera() = default;

    /// `authorizationStatusForMediaType:`
    [[nodiscard]] virtual CaptureAuthorization authorizationStatus(const std::string& mediaType) = 0;

    /// `requestAccessForMediaType:completionHandler:`; shows the system's prompt if the user was never asked.
    /// `answered` is called once, on any thread.
    virtual void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) = 0;

    /// The devices of a discovery session for these types, at any position, in its order.
    [[nodiscard]] virtual std::vector<std::shared_ptr<CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) = 0;

    /// `defaultDeviceWithMediaType:`; null when there is none.
    [[nodiscard]] virtual std::shared_ptr<CaptureDevice> defaultDevice(const std::string& mediaType) = 0;

    /// `deviceInputWithDevice:error:`; null on an error. The device must come from this `Camera`.
    [[nodiscard]] virtual std::shared_ptr<CaptureInput> makeInput(const CaptureDevice& device) = 0;

    [[nodiscard]] virtual std::unique_ptr<CaptureSession> makeSession() = 0;
    [[nodiscard]] virtual std::shared_ptr<PhotoOutput> makePhotoOutput() = 0;

    /// New settings, with a unique identifier of their own.
    [[nodiscard]] virtual std::unique_ptr<PhotoSettings> makePhotoSettings() = 0;
};

} // namespace sentrel::ports
