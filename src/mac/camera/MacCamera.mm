#include "mac/camera/Camera.hpp"

#include "mac/foundation/FoundationText.hpp"
#include "mac/foundation/Guarded.hpp"

#import <AVFoundation/AVFoundation.h>

#include <utility>

namespace sentrel::mac {

namespace {

class MacCapturedPhoto final : public ports::CapturedPhoto {
public:
    explicit MacCapturedPhoto(AVCapturePhoto* photo) : photo_(photo) {}

    [[nodiscard]] std::optional<Bytes> fileDataRepresentation() const override
    {
        NSData* data = nil;
        guarded("fileDataRepresentation", [&] { data = [photo_ fileDataRepresentation]; });
        if (data == nil) {
            return std::nullopt;
        }
        const auto* const first = static_cast<const std::uint8_t*>(data.bytes);
        return Bytes{first, first + data.length};
    }

private:
    AVCapturePhoto* const photo_;
};

} // namespace

} // namespace sentrel::mac

/// Passes photos on to the product's delegate, which keeps this object alive; the output does not.
@interface SentrelPhotoCaptureDelegate : NSObject <AVCapturePhotoCaptureDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<sentrel::ports::PhotoOutputDelegate>)delegate;
@end

@implementation SentrelPhotoCaptureDelegate {
    std::weak_ptr<sentrel::ports::PhotoOutputDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<sentrel::ports::PhotoOutputDelegate>)delegate
{
    self = [super init];
    if (self != nil) {
        _delegate = std::move(delegate);
    }
    return self;
}

- (void)captureOutput:(AVCapturePhotoOutput*)output
    didFinishProcessingPhoto:(AVCapturePhoto*)photo
                       error:(NSError*)error
{
    if (const auto delegate = _delegate.lock()) {
        std::optional<std::string> description;
        if (error != nil) {
            description = sentrel::mac::textOf(error.description);
        }
        delegate->didFinishProcessingPhoto(sentrel::mac::MacCapturedPhoto{photo}, std::move(description));
    }
}

@end

namespace sentrel::mac {

namespace {

class MacCaptureDevice final : public ports::CaptureDevice {
public:
    explicit MacCaptureDevice(AVCaptureDevice* device) : device_(device) {}

    [[nodiscard]] std::string deviceType() const override { return textOf(device_.deviceType); }
    [[nodiscard]] bool isContinuityCamera() const override { return device_.isContinuityCamera; }
    [[nodiscard]] bool isAdjustingExposure() const override { return device_.isAdjustingExposure; }
    [[nodiscard]] bool isAdjustingWhiteBalance() const override { return device_.isAdjustingWhiteBalance; }
    [[nodiscard]] AVCaptureDevice* native() const { return device_; }

private:
    AVCaptureDevice* const device_;
};

class MacCaptureInput final : public ports::CaptureInput {
public:
    explicit MacCaptureInput(AVCaptureDeviceInput* input) : input_(input) {}
    [[nodiscard]] AVCaptureDeviceInput* native() const { return input_; }

private:
    AVCaptureDeviceInput* const input_;
};

class MacPhotoSettings final : public ports::PhotoSettings {
public:
    [[nodiscard]] std::int64_t uniqueId() const override { return settings_.uniqueID; }
    [[nodiscard]] AVCapturePhotoSettings* native() const { return settings_; }

private:
    AVCapturePhotoSettings* const settings_ = [AVCapturePhotoSettings photoSettings];
};

class MacPhotoOutput final : public ports::PhotoOutput {
public:
    void capturePhoto(const ports::PhotoSettings& settings, std::weak_ptr<ports::PhotoOutputDelegate> delegate) override
    {
        const auto alive = delegate.lock();
        if (!alive) {
            return;
        }
        SentrelPhotoCaptureDelegate* const receiver =
            [[SentrelPhotoCaptureDelegate alloc] initWithDelegate:std::move(delegate)];
        alive->keepCounterpart({const_cast<void*>(CFBridgingRetain(receiver)), &CFRelease});
        // Raises when the output has no active connection: its camera is gone or was removed.
        const bool isAsked = guarded("capturePhotoWithSettings", [&] {
            [output_ capturePhotoWithSettings:static_cast<const MacPhotoSettings&>(settings).native()
                                     delegate:receiver];
        });
        if (!isAsked) {
            alive->didFinishProcessingPhoto(MacCapturedPhoto{nil}, "the output refused to take a photo");
        }
    }
    [[nodiscard]] AVCapturePhotoOutput* native() const { return output_; }

private:
    AVCapturePhotoOutput* const output_ = [[AVCapturePhotoOutput alloc] init];
};

AVCaptureDeviceInput* nativeOf(const ports::CaptureInput& input)
{
    return static_cast<const MacCaptureInput&>(input).native();
}

AVCapturePhotoOutput* nativeOf(const ports::PhotoOutput& output)
{
    return static_cast<const MacPhotoOutput&>(output).native();
}

class MacCaptureSession final : public ports::CaptureSession {
public:
    ~MacCaptureSession() override { stop(); }

    void setPreset(const std::string& preset) override
    {
        guarded("setSessionPreset", [&] { session_.sessionPreset = stringObject(preset); });
    }
    [[nodiscard]] bool canAddInput(const ports::CaptureInput& input) override
    {
        bool canAdd = false;
        guarded("canAddInput", [&] { canAdd = [session_ canAddInput:nativeOf(input)]; });
        return canAdd;
    }
    void addInput(std::shared_ptr<ports::CaptureInput> input) override
    {
        guarded("addInput", [&] { [session_ addInput:nativeOf(*input)]; });
    }
    [[nodiscard]] bool canAddOutput(const ports::PhotoOutput& output) override
    {
        bool canAdd = false;
        guarded("canAddOutput", [&] { canAdd = [session_ canAddOutput:nativeOf(output)]; });
        return canAdd;
    }
    void addOutput(std::shared_ptr<ports::PhotoOutput> output) override
    {
        guarded("addOutput", [&] { [session_ addOutput:nativeOf(*output)]; });
    }
    void startRunning() override
    {
        guarded("startRunning", [&] { [session_ startRunning]; });
    }
    void stopRunning() override { stop(); }
    [[nodiscard]] bool isRunning() const override { return session_.isRunning; }

private:
    void stop()
    {
        guarded("stopRunning", [&] { [session_ stopRunning]; });
    }

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
        NSMutableArray<AVCaptureDeviceType>* const types = [NSMutableArray array];
        for (const std::string& type : deviceTypes) {
            [types addObject:stringObject(type)];
        }
        AVCaptureDeviceDiscoverySession* const discovery =
            [AVCaptureDeviceDiscoverySession discoverySessionWithDeviceTypes:types
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
        AVCaptureDevice* const native = static_cast<const MacCaptureDevice&>(device).native();
        AVCaptureDeviceInput* input = nil;
        guarded("deviceInputWithDevice",
                [&] { input = [AVCaptureDeviceInput deviceInputWithDevice:native error:nil]; });
        return input == nil ? nullptr : std::make_shared<MacCaptureInput>(input);
    }

    [[nodiscard]] std::unique_ptr<ports::CaptureSession> makeSession() override
    {
        return std::make_unique<MacCaptureSession>();
    }

    [[nodiscard]] std::shared_ptr<ports::PhotoOutput> makePhotoOutput() override
    {
        return std::make_shared<MacPhotoOutput>();
    }

    [[nodiscard]] std::unique_ptr<ports::PhotoSettings> makePhotoSettings() override
    {
        return std::make_unique<MacPhotoSettings>();
    }
};

} // namespace

std::unique_ptr<ports::Camera> makeCamera()
{
    return std::make_unique<MacCamera>();
}

} // namespace sentrel::mac
