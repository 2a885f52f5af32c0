#pragma once

#include "ports/AudioEngine.hpp"
#include "ports/AudioHardware.hpp"

#include <memory>

namespace sentrel {

/// Plays the alarm's tone in a loop on one output device. Used on one queue.
class ToneEngine {
public:
    explicit ToneEngine(ports::AudioEngines& engines) : engines_(engines) {}
    ToneEngine(const ToneEngine&) = delete;

    /// Starts the tone anew on the device at an alarm volume of 0 to 1. False when some step of it fails or raises.
    [[nodiscard]] bool start(ports::AudioObjectId device, float alarmVolume);

    /// False when the tone was never started or has stopped by itself.
    [[nodiscard]] bool isRunning();

    /// Stops the tone. Safe when it doesn't play.
    void stop();

private:
    [[nodiscard]] bool startNow(ports::AudioObjectId device, float alarmVolume);

    ports::AudioEngines& engines_;
    std::unique_ptr<ports::AudioEngine> engine_;
};

} // namespace sentrel
