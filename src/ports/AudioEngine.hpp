#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace sentrel::ports {

/// A standard (deinterleaved, 32-bit float) audio format.
class AudioFormat {
public:
    virtual ~AudioFormat() = default;
};

/// PCM samples in a format.
class AudioBuffer {
public:
    virtual ~AudioBuffer() = default;

    /// The samples of the first channel, one for each frame of the buffer.
    [[nodiscard]] virtual std::span<float> samples() = 0;
};

/// One audio engine with one player node (`AVAudioEngine`, `AVAudioPlayerNode`). The destructor stops it. Used on one
/// queue.
class AudioEngine {
public:
    virtual ~AudioEngine() = default;

    /// `AudioUnitSetProperty` on the output node's unit with a 4-byte value; returns an `OSStatus`.
    virtual std::int32_t setOutputUnitProperty(std::uint32_t property, std::uint32_t scope, std::uint32_t element,
                                               std::uint32_t value) = 0;

    /// A standard format; null when the system can't make it.
    [[nodiscard]] virtual std::unique_ptr<AudioFormat> makeStandardFormat(double sampleRate,
                                                                          std::uint32_t channels) = 0;

    /// A buffer of exactly `frames` frames; null when the system can't make it.
    [[nodiscard]] virtual std::unique_ptr<AudioBuffer> makeBuffer(const AudioFormat& format, std::size_t frames) = 0;

    /// Attaches the player node and connects it to the main mixer; false when the system refuses.
    [[nodiscard]] virtual bool attachPlayerToMainMixer(const AudioFormat& format) = 0;
    virtual void setMainMixerVolume(float volume) = 0;

    /// False when starting fails.
    [[nodiscard]] virtual bool start() = 0;

    /// Schedules the buffer on the player, looping, without a completion handler; the engine keeps the buffer.
    virtual void scheduleLooping(std::unique_ptr<AudioBuffer> buffer) = 0;

    /// Starts the player; false when the system refuses, as it does once the engine has lost its device.
    [[nodiscard]] virtual bool play() = 0;

    /// False once the engine has stopped. The system stops it when its output changes format or disappears.
    [[nodiscard]] virtual bool isRunning() = 0;
    virtual void stop() = 0;
};

/// Makes audio engines. Any thread.
class AudioEngines {
public:
    virtual ~AudioEngines() = default;
    [[nodiscard]] virtual std::unique_ptr<AudioEngine> makeEngine() = 0;
};

/// The system's beep. Any thread.
class SystemBeep {
public:
    virtual ~SystemBeep() = default;

    /// Plays the beep on the default output device (`NSBeep`).
    virtual void beep() = 0;
};

} // namespace sentrel::ports
