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

    /// Restarts the tone on the device at an alarm volume of 0 to 1. False when any step fails or throws.
    [[nodiscard]] bool start(ports::AudioObjectId device, float alarmVolume);

    /// True while the tone's engine runs; false also when the system has stopped it.
    [[nodiscard]] bool isRunning();

    /// Stops the tone. Safe when it isn't playing.
    void stop();

private:
    [[nodiscard]] bool startNow(ports::AudioObjectId device, float alarmVolume);

    ports::AudioEngines& engines_;
    std::unique_ptr<ports::AudioEngine> engine_;
};

} // namespace sentrel
