#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/Guarded.hpp"
#include "mac/foundation/Wrapped.hpp"

#import <AVFoundation/AVFoundation.h>

#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

namespace {

class MacCapturedPhoto final : public Wrapped<ports::CapturedPhoto, AVCapturePhoto> {
public:
    using Wrapped::Wrapped;

    [[nodiscard]] std::optional<Bytes> fileDataRepresentation() const override
    {
        NSData* const data = guardedResult("fileDataRepresentation", [&] { return [native() fileDataRepresentation]; });
        return data == nil ? std::nullopt : std::optional{bytesOf(data)};
    }
};

} // namespace

/// Passes photos on to the product's delegate, which keeps this object alive; the output does not.
@interface SentrelPhotoCaptureDelegate : NSObject <AVCapturePhotoCaptureDelegate> {
@public
    std::weak_ptr<ports::PhotoOutputDelegate> told;
}
@end

@implementation SentrelPhotoCaptureDelegate

- (void)captureOutput:(AVCapturePhotoOutput*)output
    didFinishProcessingPhoto:(AVCapturePhoto*)photo
                       error:(NSError*)error
{
    if (const auto delegate = told.lock()) {
        delegate->didFinishProcessingPhoto(MacCapturedPhoto{photo}, optionalText(error.description));
    }
}

@end

namespace {

class MacCaptureDevice final : public Wrapped<ports::CaptureDevice, AVCaptureDevice> {
public:
    using Wrapped::Wrapped;
    [[nodiscard]] std::string deviceType() const override { return textOf(native().deviceType); }
    [[nodiscard]] bool isContinuityCamera() const override { return native().isContinuityCamera; }
    [[nodiscard]] bool isAdjustingExposure() const override { return native().isAdjustingExposure; }
    [[nodiscard]] bool isAdjustingWhiteBalance() const override { return native().isAdjustingWhiteBalance; }
};

using MacCaptureInput = Wrapped<ports::CaptureInput, AVCaptureDeviceInput>;

class MacPhotoSettings final : public Wrapped<ports::PhotoSettings, AVCapturePhotoSettings> {
public:
    using Wrapped::Wrapped;
    [[nodiscard]] std::int64_t uniqueId() const override { return native().uniqueID; }
};

class MacPhotoOutput final : public Wrapped<ports::PhotoOutput, AVCapturePhotoOutput> {
public:
    using Wrapped::Wrapped;
    void capturePhoto(const ports::PhotoSettings& settings, std::weak_ptr<ports::PhotoOutputDelegate> delegate) override
    {
        const auto alive = delegate.lock();
        if (!alive) {
            return;
        }
        SentrelPhotoCaptureDelegate* const receiver = [[SentrelPhotoCaptureDelegate alloc] init];
        receiver->told = std::move(delegate);
        alive->keepCounterpart({const_cast<void*>(CFBridgingRetain(receiver)), &CFRelease});
        // Raises when the output has no active connection: its camera is gone or was removed.
        const bool isAsked = guarded("capturePhotoWithSettings", [&] {
            [native() capturePhotoWithSettings:MacPhotoSettings::of(settings) delegate:receiver];
        });
        if (!isAsked) {
            alive->didFinishProcessingPhoto(MacCapturedPhoto{nil}, "the output refused to take a photo");
        }
    }
};

class MacCaptureSession final : public ports::CaptureSession {
public:
    ~MacCaptureSession() override { MacCaptureSession::stopRunning(); }

    void setPreset(const std::string& preset) override
    {
        guarded("setSessionPreset", [&] { session_.sessionPreset = stringObject(preset); });
    }
    [[nodiscard]] bool canAddInput(const ports::CaptureInput& input) override
    {
        return guardedResult("canAddInput", [&] { return [session_ canAddInput:MacCaptureInput::of(input)]; });
    }
    void addInput(std::shared_ptr<ports::CaptureInput> input) override
    {
        guarded("addInput", [&] { [session_ addInput:MacCaptureInput::of(*input)]; });
    }
    [[nodiscard]] bool canAddOutput(const ports::PhotoOutput& output) override
    {
        return guardedResult("canAddOutput", [&] { return [session_ canAddOutput:MacPhotoOutput::of(output)]; });
    }
    void addOutput(std::shared_ptr<ports::PhotoOutput> output) override
    {
        guarded("addOutput", [&] { [session_ addOutput:MacPhotoOutput::of(*output)]; });
    }
    void startRunning() override
    {
        guarded("startRunning", [&] { [session_ startRunning]; });
    }
    void stopRunning() override
    {
        guarded("stopRunning", [&] { [session_ stopRunning]; });
    }
    [[nodiscard]] bool isRunning() const override { return session_.isRunning; }

private:
    AVCaptureSession* const session_ = [[AVCaptureSession alloc] init];
};

/// Cameras through AVFoundation. Devices, inputs, outputs and settings passed in must come from here.
class MacCamera final : public ports::Camera {
public:
    [[nodiscard]] ports::CaptureAuthorization authorizationStatus(const std::string& mediaType) override
    {
        return static_cast<ports::CaptureAuthorization>(
            [AVCaptureDevice authorizationStatusForMediaType:stringObject(mediaType)]);
    }

    void requestAccess(const std::string& mediaType, std::function<void(bool granted)> answered) override
    {
        const bool isAsked = guarded("requestAccessForMediaType", [&] {
            [AVCaptureDevice requestAccessForMediaType:stringObject(mediaType)
                                     completionHandler:^(BOOL granted) {
                                         answered(granted);
                                     }];
        });
        if (!isAsked) {
            answered(false);
        }
    }

    [[nodiscard]] std::vector<std::shared_ptr<ports::CaptureDevice>>
    discoverDevices(const std::vector<std::string>& deviceTypes, const std::string& mediaType) override
    {
        AVCaptureDeviceDiscoverySession* const discovery =
            [AVCaptureDeviceDiscoverySession discoverySessionWithDeviceTypes:stringObjects(deviceTypes)
                                                                   mediaType:stringObject(mediaType)
                                                                    position:AVCaptureDevicePositionUnspecified];
        std::vector<std::shared_ptr<ports::CaptureDevice>> devices;
        for (AVCaptureDevice* device in discovery.devices) {
            devices.push_back(std::make_shared<MacCaptureDevice>(device));
        }
        return devices;
    }

    [[nodiscard]] std::shared_ptr<ports::CaptureDevice> defaultDevice(const std::string& mediaType) override
    {
        AVCaptureDevice* const device = [AVCaptureDevice defaultDeviceWithMediaType:stringObject(mediaType)];
        return device == nil ? nullptr : std::make_shared<MacCaptureDevice>(device);
    }

    [[nodiscard]] std::shared_ptr<ports::CaptureInput> makeInput(const ports::CaptureDevice& device) override
    {
        AVCaptureDevice* const native = MacCaptureDevice::of(device);
        AVCaptureDeviceInput* const input = guardedResult(
            "deviceInputWithDevice", [&] { return [AVCaptureDeviceInput deviceInputWithDevice:native error:nil]; });
        return input == nil ? nullptr : std::make_shared<MacCaptureInput>(input);
    }

    [[nodiscard]] std::unique_ptr<ports::CaptureSession> makeSession() override
    {
        return std::make_unique<MacCaptureSession>();
    }

    [[nodiscard]] std::shared_ptr<ports::PhotoOutput> makePhotoOutput() override
    {
        return std::make_shared<MacPhotoOutput>([[AVCapturePhotoOutput alloc] init]);
    }

    [[nodiscard]] std::unique_ptr<ports::PhotoSettings> makePhotoSettings() override
    {
        return std::make_unique<MacPhotoSettings>([AVCapturePhotoSettings photoSettings]);
    }
};

} // namespace

std::unique_ptr<ports::Camera> sentrel::mac::makeCamera()
{
    return std::make_unique<MacCamera>();
}
