#include "simulation/mac/sound/Speaker.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/Wav.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"
#include "simulation/mac/sound/SimulatedBeep.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>
#include <thread>

#include <sys/stat.h>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

constexpr ports::AudioObjectId speakerId = 73;
constexpr ports::AudioObjectId headphonesId = 91;

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

    Wav finish()
    {
        EXPECT_TRUE(speaker.finishRecording());
        return Wav{folder.path() / "alarm.wav"};
    }

    void record() { EXPECT_TRUE(speaker.startRecording(folder.path() / "alarm.wav")); }
};

std::vector<float> sine(double frequency, std::size_t frames)
{
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        samples[i] =
            static_cast<float>(std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(i) / 44'100.0));
    }
    return samples;
}

const std::vector<float> constant(100, 1.0F);

TEST(Speaker, AToneIsHeardAtItsFrequencyThroughMixerAndDeviceVolume)
{
    Machine machine;
    machine.record();
    machine.clock.advance(1s);
    auto engine = machine.play(sine(880, 44'100), 0.8F);
    machine.clock.advance(2500ms);
    engine.reset();
    machine.clock.advance(1s);
    const Wav wav = machine.finish();

    EXPECT_EQ(wav.frames.size(), 198'450U) << "4.5 s";
    EXPECT_EQ(Wav::rms(wav.part(0, 1)), 0.0);
    EXPECT_NEAR(Wav::rms(wav.part(1, 2.5)), 0.8 * 0.5 / std::numbers::sqrt2, 1e-4);
    EXPECT_EQ(Wav::dominantFrequency(wav.part(2.7, 0.5)), 880.0) << "over the loop's seam";
    EXPECT_EQ(Wav::rms(wav.part(3.5, 1)), 0.0);
}

TEST(Speaker, ChangesOfVolumeMuteMixerAndDeviceAreHeardInTheirFrame)
{
    Machine machine;
    machine.clock.advance(10s);
    machine.record();
    machine.clock.advance(1ms); // frame 44.1
    const auto engine = machine.play(constant, 1.0F);
    machine.clock.advance(1ms); // frame 88.2
    machine.audio.setVolume(speakerId, 0.25F, {});
    machine.clock.advance(1ms); // frame 132.3
    machine.audio.setVolume(speakerId, {}, true);
    machine.clock.advance(1ms); // frame 176.4
    engine->setMainMixerVolume(0.5F);
    machine.audio.setVolume(speakerId, {}, false);
    machine.clock.advance(1ms); // frame 220.5
    EXPECT_EQ(engine->setOutputUnitProperty(2000, 0, 0, headphonesId), 0);
    machine.clock.advance(1ms); // frame 264.6
    machine.audio.remove(headphonesId);
    machine.clock.advance(1ms);
    const Wav wav = machine.finish();

    ASSERT_EQ(wav.frames.size(), 308U);
    const struct {
        std::size_t from;
        std::size_t to;
        int level;
    } steps[] = {{0, 44, 0},       {44, 88, 16'384},   {88, 132, 8192}, {132, 176, 0},
                 {176, 220, 4096}, {220, 264, 16'384}, {264, 308, 0}};
    for (const auto& [from, to, level] : steps) {
        for (std::size_t i = from; i < to; ++i) {
            ASSERT_EQ(wav.frames[i], level) << "frame " << i;
        }
    }
}

TEST(Speaker, SoundsAddUpAndClip)
{
    Machine machine;
    machine.record();
    machine.audio.setVolume(speakerId, 1.0F, {});
    const auto first = machine.play(constant, 0.75F);
    const auto second = machine.play({-0.5F, 0.5F, std::numeric_limits<float>::quiet_NaN()}, 1.0F);
    machine.clock.advance(1ms);
    const Wav wav = machine.finish();
    EXPECT_EQ(wav.frames[0], 8192);
    EXPECT_EQ(wav.frames[1], 32'767);
    EXPECT_EQ(wav.frames[3], 8192);
}

TEST(Speaker, BeepsFollowEachOtherOnWhatWasTheDefaultOutput)
{
    Machine machine;
    machine.record();
    machine.beep.beep();
    machine.audio.setDefaultOutput(speakerId);
    machine.beep.beep();
    machine.audio.setDefaultOutput(headphonesId);
    machine.beep.faults().set("beep", 1);
    machine.beep.beep();

    machine.clock.advance(200ms);
    ASSERT_EQ(machine.speaker.sounding().size(), 1U);
    EXPECT_EQ(machine.speaker.sounding()[0].kind, Sounding::Kind::beep);
    EXPECT_EQ(machine.speaker.sounding()[0].device, speakerId);
    EXPECT_EQ(machine.speaker.sounding()[0].gain, 0.5F);
    machine.clock.advance(200ms);
    EXPECT_TRUE(machine.speaker.sounding().empty());

    const Wav wav = machine.finish();
    EXPECT_EQ(Wav::dominantFrequency(wav.part(0, 0.15)), 1000.0);
    EXPECT_NEAR(Wav::rms(wav.part(0.15, 0.15)), Wav::rms(wav.part(0, 0.15)) / 2, 1e-4);
    EXPECT_EQ(Wav::rms(wav.part(0.3, 0.1)), 0.0);
}

TEST(Speaker, SleepAndTheEndOfTheDefaultOutputSilenceIt)
{
    Machine machine;
    auto engine = machine.engines.makeEngine();
    const auto format = engine->makeStandardFormat(44'100, 1);
    EXPECT_TRUE(engine->attachPlayerToMainMixer(*format));
    EXPECT_TRUE(engine->start());
    engine->scheduleLooping(engine->makeBuffer(*format, 10));
    EXPECT_TRUE(engine->play());
    const auto gain = [&] { return machine.speaker.sounding().at(0).gain; };
    EXPECT_EQ(gain(), 1.0F) << "on the headphones, the default output";
    machine.audio.remove(headphonesId);
    EXPECT_EQ(gain(), 0.5F) << "it follows the default output";
    machine.audio.setDefaultOutput(std::nullopt);
    EXPECT_EQ(gain(), 0.0F);
    machine.audio.setDefaultOutput(speakerId);
    machine.speaker.setAsleep(true);
    EXPECT_EQ(gain(), 0.0F);
    machine.speaker.setAsleep(false);
    EXPECT_EQ(gain(), 0.5F);
    engine->stop();
    EXPECT_TRUE(machine.speaker.sounding().empty());
}

TEST(Speaker, ARecordingHoldsTenMinutesAndItsSilenceTakesNoSpace)
{
    Machine machine;
    machine.record();
    machine.clock.advance(590s);
    const auto engine = machine.play(constant, 1.0F);
    machine.clock.advance(1h);
    EXPECT_TRUE(machine.speaker.finishRecording());

    const auto file = machine.folder.path() / "alarm.wav";
    EXPECT_EQ(std::filesystem::file_size(file), 44U + 88'200U * 600);
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    if (status.st_blocks * 512 > 10LL * 88'200 + (1 << 20)) {
        GTEST_SKIP() << "this file system keeps no holes";
    }
}

TEST(Speaker, TellsWhenItCannotRecord)
{
    Machine machine;
    EXPECT_FALSE(machine.speaker.startRecording(machine.folder.path() / "none" / "alarm.wav"));
    EXPECT_FALSE(machine.speaker.finishRecording());
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
    (void)Wav{folder.path() / "alarm.wav"};
}

} // namespace
} // namespace sentrel::simulation
