#include "mac/sound/Sound.hpp"

#include "mac/foundation/Guarded.hpp"

#import <AVFAudio/AVFAudio.h>
#import <AppKit/AppKit.h>
#import <AudioToolbox/AudioToolbox.h>

#include <utility>

namespace sentrel::mac {

namespace {

class Format final : public ports::AudioFormat {
public:
    explicit Format(AVAudioFormat* format) : format_(format) {}
    [[nodiscard]] AVAudioFormat* native() const { return format_; }

private:
    AVAudioFormat* const format_;
};

class Buffer final : public ports::AudioBuffer {
public:
    explicit Buffer(AVAudioPCMBuffer* buffer) : buffer_(buffer) {}
    [[nodiscard]] std::span<float> samples() override { return {buffer_.floatChannelData[0], buffer_.frameLength}; }
    [[nodiscard]] AVAudioPCMBuffer* native() const { return buffer_; }

private:
    AVAudioPCMBuffer* const buffer_;
};

/// Formats and buffers passed in must come from such an engine. AVFAudio raises where other interfaces return an error,
/// above all when the device is lost.
class Engine final : public ports::AudioEngine {
public:
    ~Engine() override { stopNow(); }

    std::int32_t setOutputUnitProperty(std::uint32_t property, std::uint32_t scope, std::uint32_t element,
                                       std::uint32_t value) override
    {
        OSStatus status = kAudio_ParamError;
        guarded("outputNode", [&] {
            status = AudioUnitSetProperty(engine_.outputNode.audioUnit, property, scope, element, &value, sizeof value);
        });
        return status;
    }

    [[nodiscard]] std::unique_ptr<ports::AudioFormat> makeStandardFormat(double sampleRate,
                                                                         std::uint32_t channels) override
    {
        AVAudioFormat* format = nil;
        guarded("initStandardFormat", [&] {
            format = [[AVAudioFormat alloc] initStandardFormatWithSampleRate:sampleRate channels:channels];
        });
        return format == nil ? nullptr : std::make_unique<Format>(format);
    }

    [[nodiscard]] std::unique_ptr<ports::AudioBuffer> makeBuffer(const ports::AudioFormat& format,
                                                                 std::size_t frames) override
    {
        const auto count = static_cast<AVAudioFrameCount>(frames);
        AVAudioPCMBuffer* buffer = nil;
        const bool isMade = guarded("initWithPCMFormat", [&] {
            buffer = [[AVAudioPCMBuffer alloc] initWithPCMFormat:nativeOf(format) frameCapacity:count];
            buffer.frameLength = count;
        });
        if (!isMade || buffer == nil) {
            return nullptr;
        }
        return std::make_unique<Buffer>(buffer);
    }

    [[nodiscard]] bool attachPlayerToMainMixer(const ports::AudioFormat& format) override
    {
        return guarded("connect", [&] {
            [engine_ attachNode:player_];
            [engine_ connect:player_ to:engine_.mainMixerNode format:nativeOf(format)];
        });
    }

    void setMainMixerVolume(float volume) override
    {
        guarded("mainMixerNode", [&] { engine_.mainMixerNode.outputVolume = volume; });
    }

    [[nodiscard]] bool start() override
    {
        bool isStarted = false;
        guarded("start", [&] { isStarted = [engine_ startAndReturnError:nil]; });
        return isStarted;
    }

    void scheduleLooping(std::unique_ptr<ports::AudioBuffer> buffer) override
    {
        // The player retains the native buffer. If it refuses, it has nothing to play.
        isScheduled_ = guarded("scheduleBuffer", [&] {
            [player_ scheduleBuffer:static_cast<const Buffer&>(*buffer).native()
                             atTime:nil
                            options:AVAudioPlayerNodeBufferLoops
                  completionHandler:nil];
        });
    }

    [[nodiscard]] bool play() override
    {
        return isScheduled_ && guarded("play", [&] { [player_ play]; });
    }
    [[nodiscard]] bool isRunning() override { return engine_.isRunning; }
    void stop() override { stopNow(); }

private:
    void stopNow()
    {
        guarded("stop", [&] { [engine_ stop]; });
    }

    static AVAudioFormat* nativeOf(const ports::AudioFormat& format)
    {
        return static_cast<const Format&>(format).native();
    }

    AVAudioEngine* const engine_ = [[AVAudioEngine alloc] init];
    bool isScheduled_ = false;
    AVAudioPlayerNode* const player_ = [[AVAudioPlayerNode alloc] init];
};

/// Audio engines of AVFAudio.
class MacAudioEngines final : public ports::AudioEngines {
public:
    [[nodiscard]] std::unique_ptr<ports::AudioEngine> makeEngine() override { return std::make_unique<Engine>(); }
};

} // namespace

std::unique_ptr<ports::AudioEngines> makeAudioEngines()
{
    return std::make_unique<MacAudioEngines>();
}

namespace {

/// The system's beep through AppKit.
class MacSystemBeep final : public ports::SystemBeep {
public:
    void beep() override { NSBeep(); }
};

} // namespace

std::unique_ptr<ports::SystemBeep> makeSystemBeep()
{
    return std::make_unique<MacSystemBeep>();
}

} // namespace sentrel::mac
