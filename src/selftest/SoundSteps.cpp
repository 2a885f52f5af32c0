#include "ports/AudioConstants.hpp"
#include "ports/AudioEngine.hpp"
#include "ports/AudioHardware.hpp"
#include "ports/Automation.hpp"
#include "ports/SystemConstants.hpp"
#include "runtime/Sleep.hpp"
#include "selftest/Steps.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sentrel::selftest {

namespace {

using namespace std::chrono_literals;
using namespace ports::audio;
using ports::AudioObjectId;

constexpr double sampleRate = 44100.0;
constexpr std::size_t framesOfTone = 44100;
constexpr double pitch = 440.0; // Hz
constexpr float quiet = 0.1F;

constexpr const char* musicIdentifier = "com.apple.Music";

bool isOutput(ports::AudioHardware& hardware, AudioObjectId device)
{
    const auto channels = hardware.readBufferChannels(device, {streamConfigurationSelector, outputScope, 0});
    return channels && std::ranges::any_of(*channels, [](std::uint32_t count) { return count > 0; });
}

/// The elements of the device that have the control, such as "0 1 2"; empty without any.
std::string elementsOf(ports::AudioHardware& hardware, AudioObjectId device, std::uint32_t selector)
{
    std::string elements;
    for (std::uint32_t element = 0; element <= 4; ++element) {
        if (hardware.hasProperty(device, {selector, outputScope, element})) {
            elements += (elements.empty() ? "" : " ") + std::to_string(element);
        }
    }
    return elements;
}

struct Device {
    std::string text;
    bool isUsable = false; ///< built in, with a volume that can be set
};

Device deviceOf(ports::AudioHardware& hardware, AudioObjectId device)
{
    const bool isBuiltIn = hardware.readUInt32(device, {transportTypeSelector, globalScope, 0}) == builtInTransport;
    const std::string main = elementsOf(hardware, device, virtualMainVolumeSelector);
    const std::string scalar = elementsOf(hardware, device, volumeScalarSelector);
    const std::string mute = elementsOf(hardware, device, muteSelector);
    const auto shown = [](const char* name, const std::string& elements) {
        return std::string{name} + (elements.empty() ? ": none" : ": element " + elements);
    };
    std::string text = hardware.readText(device, {nameSelector, globalScope, 0}).value_or("without a name");
    text += isBuiltIn ? " (built in; " : " (";
    text += shown("main volume", main) + ", " + shown("volume", scalar) + ", " + shown("mute", mute) + ")";
    return {std::move(text), isBuiltIn && (!main.empty() || !scalar.empty())};
}

void fillWithTone(std::span<float> samples)
{
    for (std::size_t frame = 0; frame < samples.size(); ++frame) {
        const double turn = 2.0 * std::numbers::pi * pitch * static_cast<double>(frame) / sampleRate;
        samples[frame] = quiet * static_cast<float>(std::sin(turn));
    }
}

/// The step of the engine that failed; none once it plays.
const char* startTone(ports::AudioEngine& engine)
{
    const auto format = engine.makeStandardFormat(sampleRate, 1);
    if (format == nullptr) {
        return "no format is made";
    }
    if (!engine.attachPlayerToMainMixer(*format)) {
        return "the player can't be connected";
    }
    auto buffer = engine.makeBuffer(*format, framesOfTone);
    if (buffer == nullptr) {
        return "no buffer is made";
    }
    fillWithTone(buffer->samples());
    engine.setMainMixerVolume(1.0F);
    if (!engine.start()) {
        return "the engine doesn't start";
    }
    engine.scheduleLooping(std::move(buffer));
    return engine.play() ? nullptr : "the player doesn't start";
}

} // namespace

Async<Outcome> checkAudioDevices(const Bench& bench)
{
    ports::AudioHardware& hardware = bench.platform.audioHardware;
    const auto devices = hardware.readObjectList(systemObject, {devicesSelector, globalScope, 0});
    if (!devices) {
        co_return Outcome{Verdict::fail, "the system lists no audio devices"};
    }
    bool isUsable = false;
    std::string fact;
    for (const AudioObjectId id : *devices) {
        if (isOutput(hardware, id)) {
            Device device = deviceOf(hardware, id);
            isUsable = isUsable || device.isUsable;
            fact += (fact.empty() ? "" : "; ") + device.text;
        }
    }
    co_return Outcome{isUsable ? Verdict::pass : Verdict::fail, fact.empty() ? "no output" : fact};
}

Async<Outcome> checkTone(const Bench& bench)
{
    const auto engine = bench.platform.audioEngines.makeEngine();
    if (engine == nullptr) {
        co_return Outcome{Verdict::fail, "no engine is made"};
    }
    if (const char* const failure = startTone(*engine)) {
        co_return Outcome{Verdict::fail, failure};
    }
    co_await sleepFor(1s);
    const bool isRunning = engine->isRunning();
    engine->stop();
    co_return isRunning ? Outcome{Verdict::ask, "played"} : Outcome{Verdict::fail, "the engine stopped by itself"};
}

Async<Outcome> checkMusic(const Bench& bench)
{
    constexpr std::int32_t noError = 0;
    ports::RunningApplications& applications = bench.platform.runningApplications;
    if (!applications.isInstalled(musicIdentifier) || !applications.isRunning(musicIdentifier)) {
        co_return Outcome{Verdict::ask, "Music doesn't run"};
    }
    const auto status = co_await bench.platform.automation.determinePermission(
        ports::bundleIdentifierType, musicIdentifier, ports::anyAppleEvent, ports::anyAppleEvent, true);
    if (!status) {
        co_return Outcome{Verdict::fail, "the system makes no target for events"};
    }
    if (*status != noError) {
        co_return Outcome{Verdict::ask, "events are refused with status " + std::to_string(*status)};
    }
    co_return Outcome{Verdict::pass, "may be paused"};
}

} // namespace sentrel::selftest
