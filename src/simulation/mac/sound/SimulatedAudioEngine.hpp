#pragma once

#include "ports/AudioEngine.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace sentrel::simulation {

/// One engine with one player node. It sounds while it is started, has a buffer and is playing.
class SimulatedAudioEngine final : public ports::AudioEngine {
public:
    explicit SimulatedAudioEngine(SimulatedAudioEngines& engines);
    ~SimulatedAudioEngine() override;

    std::int32_t setOutputUnitProperty(std::uint32_t property, std::uint32_t scope, std::uint32_t element,
                                       std::uint32_t value) override;
    [[nodiscard]] std::unique_ptr<ports::AudioFormat> makeStandardFormat(double sampleRate,
                                                                         std::uint32_t channels) override;
    [[nodiscard]] std::unique_ptr<ports::AudioBuffer> makeBuffer(const ports::AudioFormat& format,
                                                                 std::size_t frames) override;
    [[nodiscard]] bool attachPlayerToMainMixer(const ports::AudioFormat& format) override;
    void setMainMixerVolume(float volume) override;
    [[nodiscard]] bool start() override;
    void scheduleLooping(std::unique_ptr<ports::AudioBuffer> buffer) override;
    [[nodiscard]] bool play() override;
    [[nodiscard]] bool isRunning() override;
    void stop() override;

    /// The system stops it. Any thread.
    void fallSilent();

private:
    void end();

    SimulatedAudioEngines& engines_;
    std::mutex mutex_; // guards the sound and whether it is started
    Speaker& speaker_;
    SimulatedAudio& audio_;
    FaultSwitches& faults_;
    std::optional<ports::AudioObjectId> device_; // none follows the default output
    float mixerVolume_ = 1.0F;
    bool isAttached_ = false;
    bool isStarted_ = false;
    Speaker::Samples scheduled_;
    std::optional<Speaker::SoundId> sound_;
};

} // namespace sentrel::simulation
