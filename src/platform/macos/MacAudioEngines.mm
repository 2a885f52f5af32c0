#include "platform/macos/MacAudioEngines.hpp"

#import <AVFAudio/AVFAudio.h>
#import <AudioToolbox/AudioToolbox.h>

#include <utility>

namespace sentrel::macos {

namespace {

class Format final : public platform::AudioFormat {
public:
    explicit Format(AVAudioFormat* format) : format_(format) {}
    [[nodiscard]] AVAudioFormat* native() const { return format_; }

private:
    AVAudioFormat* const format_;
};

class Buffer final : public platform::AudioBuffer {
public:
    explicit Buffer(AVAudioPCMBuffer* buffer) : buffer_(buffer) {}
    [[nodiscard]] std::span<float> samples() override { return {buffer_.floatChannelData[0], buffer_.frameLength}; }
    [[nodiscard]] AVAudioPCMBuffer* native() const { return buffer_; }

private:
    AVAudioPCMBuffer* const buffer_;
};

/// Formats and buffers that come in were made by an engine of this kind.
class Engine final : public platform::AudioEngine {
public:
    ~Engine() override { [engine_ stop]; }

    std::int32_t setOutputUnitProperty(std::uint32_t property, std::uint32_t scope, std::uint32_t element,
                                       std::uint32_t value) override
    {
        return AudioUnitSetProperty(engine_.outputNode.audioUnit, property, scope, element, &value, sizeof value);
    }

    [[nodiscard]] std::unique_ptr<platform::AudioFormat> makeStandardFormat(double sampleRate,
                                                                            std::uint32_t channels) override
    {
        AVAudioFormat* const format = [[AVAudioFormat alloc] initStandardFormatWithSampleRate:sampleRate
                                                                                     channels:channels];
        return format == nil ? nullptr : std::make_unique<Format>(format);
    }

    [[nodiscard]] std::unique_ptr<platform::AudioBuffer> makeBuffer(const platform::AudioFormat& format,
                                                                    std::size_t frames) override
    {
        const auto count = static_cast<AVAudioFrameCount>(frames);
        AVAudioPCMBuffer* const buffer = [[AVAudioPCMBuffer alloc] initWithPCMFormat:nativeOf(format)
                                                                       frameCapacity:count];
        if (buffer == nil) {
            return nullptr;
        }
        buffer.frameLength = count;
        return std::make_unique<Buffer>(buffer);
    }

    [[nodiscard]] bool attachPlayerToMainMixer(const platform::AudioFormat& format) override
    {
        // The engine raises what other interfaces return.
        @try {
            [engine_ attachNode:player_];
            [engine_ connect:player_ to:engine_.mainMixerNode format:nativeOf(format)];
            return true;
        } @catch (NSException*) {
            return false;
        }
    }

    void setMainMixerVolume(float volume) override { engine_.mainMixerNode.outputVolume = volume; }

    [[nodiscard]] bool start() override { return [engine_ startAndReturnError:nil]; }

    void scheduleLooping(std::unique_ptr<platform::AudioBuffer> buffer) override
    {
        // The player retains the native buffer.
        [player_ scheduleBuffer:static_cast<const Buffer&>(*buffer).native()
                         atTime:nil
                        options:AVAudioPlayerNodeBufferLoops
              completionHandler:nil];
    }

    [[nodiscard]] bool play() override
    {
        @try {
            [player_ play];
            return true;
        } @catch (NSException*) {
            return false;
        }
    }
    void stop() override { [engine_ stop]; }

private:
    static AVAudioFormat* nativeOf(const platform::AudioFormat& format)
    {
        return static_cast<const Format&>(format).native();
    }

    AVAudioEngine* const engine_ = [[AVAudioEngine alloc] init];
    AVAudioPlayerNode* const player_ = [[AVAudioPlayerNode alloc] init];
};

} // namespace

std::unique_ptr<platform::AudioEngine> MacAudioEngines::makeEngine()
{
    return std::make_unique<Engine>();
}

} // namespace sentrel::macos
