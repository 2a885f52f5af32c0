#include "simulation/mac/sound/Speaker.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"
#include "simulation/mac/sound/SimulatedBeep.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <numbers>
#include <span>
#include <thread>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using Frames = std::span<const std::int16_t>;

constexpr ports::AudioObjectId speakerId = 73;
constexpr ports::AudioObjectId headphonesId = 91;

/// The frames of a mono 16-bit WAV file of 44.1 kHz.
std::vector<std::int16_t> framesOf(const std::filesystem::path& file)
{
    const std::string bytes = test::contentOf(file);
    const auto size = [&](std::size_t before) {
        const auto number = static_cast<std::uint32_t>(bytes.size() - before);
        std::string text(sizeof number, '\0');
        std::memcpy(text.data(), &number, sizeof number);
        return text;
    };
    EXPECT_EQ(bytes.substr(0, 44),
              "RIFF" + size(8) + "WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0\x88\x58\1\0\2\0\x10\0"s + "data" + size(44));
    std::vector<std::int16_t> frames((bytes.size() - 44) / 2);
    std::memcpy(frames.data(), bytes.data() + 44, frames.size() * 2);
    return frames;
}

Frames part(Frames frames, double from, double seconds)
{
    return frames.subspan(static_cast<std::size_t>(from * 44'100), static_cast<std::size_t>(seconds * 44'100));
}

/// Root mean square, 1 being full scale.
double loudness(Frames frames)
{
    double squares = 0.0;
    for (const std::int16_t frame : frames) {
        squares += static_cast<double>(frame) * frame;
    }
    return std::sqrt(squares / static_cast<double>(frames.size())) / 32'767.0;
}

/// How often a second the sound rises through silence.
double frequency(Frames frames)
{
    int rises = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        rises += frames[i - 1] < 0 && frames[i] >= 0 ? 1 : 0;
    }
    return rises * 44'100.0 / static_cast<double>(frames.size());
}

AudioDevice device(ports::AudioObjectId id, float volume)
{
    AudioDevice made{.id = id};
    made.addControls({0}, volume, false);
    return made;
}

struct Machine {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    SimulatedAudio audio{log, {device(speakerId, 0.5F), device(headphonesId, 1.0F)}, headphonesId};
    Speaker speaker{hardware, audio};
    SimulatedAudioEngines engines{speaker, audio};
    SimulatedBeep beep{speaker};
    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "alarm.wav";

    /// An engine that plays these samples in a loop on the built-in speaker.
    std::unique_ptr<ports::AudioEngine> play(const std::vector<float>& samples, float volume)
    {
        auto engine = engines.makeEngine();
        EXPECT_EQ(engine->setOutputUnitProperty(2000, 0, 0, speakerId), 0);
        const auto format = engine->makeStandardFormat(44'100, 1);
        EXPECT_TRUE(engine->attachPlayerToMainMixer(*format));
        engine->setMainMixerVolume(volume);
        auto buffer = engine->makeBuffer(*format, samples.size());
        std::ranges::copy(samples, buffer->samples().begin());
        EXPECT_TRUE(engine->start());
        engine->scheduleLooping(std::move(buffer));
        EXPECT_TRUE(engine->play());
        return engine;
    }

    std::vector<std::int16_t> finish()
    {
        EXPECT_TRUE(speaker.finishRecording());
        return framesOf(file);
    }

    void record() { EXPECT_TRUE(speaker.startRecording(file)); }
};

const std::vector<float> constant(100, 1.0F);

TEST(Speaker, AToneAndABeepAreHeardAtTheirFrequenciesThroughMixerAndDeviceVolume)
{
    std::vector<float> samples(44'100);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<float>(std::sin(2.0 * std::numbers::pi * 880.0 * static_cast<double>(i) / 44'100.0));
    }
    Machine machine;
    machine.record();
    machine.clock.advance(1s);
    auto engine = machine.play(samples, 0.8F);
    machine.clock.advance(2500ms);
    engine.reset();
    machine.clock.advance(1s);
    machine.audio.setDefaultOutput(speakerId);
    machine.beep.beep();
    machine.audio.setDefaultOutput(headphonesId);
    machine.clock.advance(500ms);
    const auto heard = machine.finish();

    EXPECT_EQ(heard.size(), 220'500U) << "5 s";
    EXPECT_EQ(loudness(part(heard, 0, 1)), 0.0);
    EXPECT_NEAR(loudness(part(heard, 1, 2.5)), 0.8 * 0.5 / std::numbers::sqrt2, 1e-4);
    EXPECT_NEAR(frequency(part(heard, 2.7, 0.5)), 880.0, 2.0) << "over the loop's seam";
    EXPECT_EQ(loudness(part(heard, 3.5, 1)), 0.0);
    EXPECT_NEAR(frequency(part(heard, 4.5, 0.1)), 1000.0, 10.0);
    EXPECT_GT(loudness(part(heard, 4.5, 0.1)), 0.1);
}

TEST(Speaker, ChangesAreHeardInTheirFrame)
{
    Machine machine;
    machine.clock.advance(10s);
    machine.record();
    machine.clock.advance(1ms);
    const auto engine = machine.play(constant, 1.0F);
    const std::pair<std::function<void()>, int> changes[] = {
        {[] {}, 16'384},
        {[&] { machine.audio.setVolume(speakerId, 0.25F, {}); }, 8192},
        {[&] { machine.audio.setVolume(speakerId, {}, true); }, 0},
        {[&] {
             engine->setMainMixerVolume(0.5F);
             machine.audio.setVolume(speakerId, {}, false);
         },
         4096},
        {[&] { machine.speaker.setAsleep(true); }, 0},
        {[&] { machine.speaker.setAsleep(false); }, 4096},
        {[&] { EXPECT_EQ(engine->setOutputUnitProperty(2000, 0, 0, headphonesId), 0); }, 16'384},
        {[&] { machine.audio.remove(headphonesId); }, 0},
    };
    std::vector<int> expected(44, 0);
    for (std::size_t milliseconds = 2; const auto& [change, level] : changes) {
        change();
        machine.clock.advance(1ms);
        expected.resize(milliseconds++ * 441 / 10, level);
    }
    const auto heard = machine.finish();
    EXPECT_EQ((std::vector<int>{heard.begin(), heard.end()}), expected);
}

TEST(Speaker, SoundsAddUpAndClip)
{
    Machine machine;
    machine.record();
    machine.audio.setVolume(speakerId, 1.0F, {});
    const auto first = machine.play(constant, 0.75F);
    const auto second = machine.play({-0.5F, 0.5F, std::numeric_limits<float>::quiet_NaN()}, 1.0F);
    machine.clock.advance(1ms);
    const auto heard = machine.finish();
    EXPECT_EQ(heard[0], 8192);
    EXPECT_EQ(heard[1], 32'767);
    EXPECT_EQ(heard[3], 8192);
}

TEST(Speaker, ARecordingHoldsTenMinutesAndSaysWhenThereIsNone)
{
    Machine machine;
    EXPECT_FALSE(machine.speaker.startRecording(machine.folder.path() / "none" / "alarm.wav"));
    EXPECT_FALSE(machine.speaker.finishRecording());
    machine.record();
    machine.clock.advance(590s);
    const auto engine = machine.play(constant, 1.0F);
    machine.clock.advance(1h);
    EXPECT_TRUE(machine.speaker.finishRecording());
    EXPECT_EQ(std::filesystem::file_size(machine.file), 44U + 88'200U * 600);
}

TEST(Speaker, KeepsTrackWhileRealThreadsChangeEverything)
{
    ThreadScheduler scheduler;
    EventLog log{scheduler};
    SimulatedAudio audio{log, {device(speakerId, 0.5F)}, speakerId};
    Speaker speaker{scheduler, audio};
    const TemporaryFolder folder;
    ASSERT_TRUE(speaker.startRecording(folder.path() / "alarm.wav"));
    std::thread user{[&] {
        for (int i = 0; i < 500; ++i) {
            audio.setVolume(speakerId, i % 2 == 0 ? 0.1F : 0.9F, i % 3 == 0);
        }
    }};
    for (int i = 0; i < 200; ++i) {
        const auto sound = speaker.beginLoop(std::make_shared<std::vector<float>>(10, 1.0F), 1.0F, speakerId);
        EXPECT_LE(speaker.sounding().size(), 1U);
        speaker.end(sound);
    }
    user.join();
    EXPECT_TRUE(speaker.finishRecording());
    (void)framesOf(folder.path() / "alarm.wav");
}

} // namespace
} // namespace sentrel::simulation
