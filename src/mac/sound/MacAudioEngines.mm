#include "mac/Adapters.hpp"

#include "mac/foundation/Guarded.hpp"
#include "mac/foundation/Wrapped.hpp"

#import <AVFAudio/AVFAudio.h>
#import <AppKit/AppKit.h>
#import <AudioToolbox/AudioToolbox.h>

namespace sentrel::mac {

namespace {

using Format = Wrapped<ports::AudioFormat, AVAudioFormat>;

class Buffer final : public Wrapped<ports::AudioBuffer, AVAudioPCMBuffer> {
public:
    using Wrapped::Wrapped;
    [[nodiscard]] std::span<float> samples() override { return {native().floatChannelData[0], native().frameLength}; }
};

/// Formats and buffers passed in must come from such an engine. AVFAudio raises where other interfaces return an error,
/// above all when the device is lost.
class Engine final : public ports::AudioEngine {
public:
    ~Engine() override { Engine::stop(); }

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
        AVAudioFormat* const format = guardedResult("initStandardFormat", [&] {
            return [[AVAudioFormat alloc] initStandardFormatWithSampleRate:sampleRate channels:channels];
        });
        return format == nil ? nullptr : std::make_unique<Format>(format);
    }

    [[nodiscard]] std::unique_ptr<ports::AudioBuffer> makeBuffer(const ports::AudioFormat& format,
                                                                 std::size_t frames) override
    {
        const auto count = static_cast<AVAudioFrameCount>(frames);
        AVAudioPCMBuffer* const buffer = guardedResult("initWithPCMFormat", [&] {
            AVAudioPCMBuffer* const made = [[AVAudioPCMBuffer alloc] initWithPCMFormat:Format::of(format)
                                                                         frameCapacity:count];
            made.frameLength = count;
            return made;
        });
        return buffer == nil ? nullptr : std::make_unique<Buffer>(buffer);
    }

    [[nodiscard]] bool attachPlayerToMainMixer(const ports::AudioFormat& format) override
    {
        return guarded("connect", [&] {
            [engine_ attachNode:player_];
            [engine_ connect:player_ to:engine_.mainMixerNode format:Format::of(format)];
        });
    }

    void setMainMixerVolume(float volume) override
    {
        guarded("mainMixerNode", [&] { engine_.mainMixerNode.outputVolume = volume; });
    }

    [[nodiscard]] bool start() override
    {
        return guardedResult("start", [&] { return [engine_ startAndReturnError:nil]; });
    }

    void scheduleLooping(std::unique_ptr<ports::AudioBuffer> buffer) override
    {
        // The player retains the native buffer. If it refuses, it has nothing to play.
        isScheduled_ = guarded("scheduleBuffer", [&] {
            [player_ scheduleBuffer:Buffer::of(*buffer)
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
    void stop() override
    {
        guarded("stop", [&] { [engine_ stop]; });
    }

private:
    AVAudioEngine* const engine_ = [[AVAudioEngine alloc] init];
    bool isScheduled_ = false;
    AVAudioPlayerNode* const player_ = [[AVAudioPlayerNode alloc] init];
};

/// Audio engines of AVFAudio.
class MacAudioEngines final : public ports::AudioEngines {
public:
    [[nodiscard]] std::unique_ptr<ports::AudioEngine> makeEngine() override { return std::make_unique<Engine>(); }
};

/// The system's beep through AppKit.
class MacSystemBeep final : public ports::SystemBeep {
public:
    void beep() override { NSBeep(); }
};

} // namespace

std::unique_ptr<ports::AudioEngines> makeAudioEngines()
{
    return std::make_unique<MacAudioEngines>();
}

std::unique_ptr<ports::SystemBeep> makeSystemBeep()
{
    return std::make_unique<MacSystemBeep>();
}

} // namespace sentrel::mac
