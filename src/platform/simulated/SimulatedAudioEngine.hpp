#pragma once

#include "platform/AudioEngine.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/Speaker.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace sentrel::simulated {

/// One engine with one player node. It sounds while it is started, has a buffer, and plays.
class SimulatedAudioEngine final : public platform::AudioEngine {
public:
    SimulatedAudioEngine(Speaker& speaker, SimulatedAudio& audio, FaultSwitches& faults)
        : speaker_(speaker), audio_(audio), faults_(faults)
    {
    }
    ~SimulatedAudioEngine() override { SimulatedAudioEngine::stop(); }

    std::int32_t setOutputUnitProperty(std::uint32_t property, std::uint32_t scope, std::uint32_t element,
                                       std::uint32_t value) override;
    [[nodiscard]] std::unique_ptr<platform::AudioFormat> makeStandardFormat(double sampleRate,
                                                                            std::uint32_t channels) override;
    [[nodiscard]] std::unique_ptr<platform::AudioBuffer> makeBuffer(const platform::AudioFormat& format,
                                                                    std::size_t frames) override;
    [[nodiscard]] bool attachPlayerToMainMixer(const platform::AudioFormat& format) override;
    void setMainMixerVolume(float volume) override;
    [[nodiscard]] bool start() override;
    void scheduleLooping(std::unique_ptr<platform::AudioBuffer> buffer) override;
    [[nodiscard]] bool play() override;
    void stop() override;

private:
    Speaker& speaker_;
    SimulatedAudio& audio_;
    FaultSwitches& faults_;
    std::optional<platform::AudioObjectId> device_; // none: it follows the default output
    float mixerVolume_ = 1.0F;
    bool isAttached_ = false;
    bool isStarted_ = false;
    Speaker::Samples scheduled_;
    std::optional<Speaker::SoundId> sound_;
};

} // namespace sentrel::simulated
