#include "outputs/AlarmSoundPlayer.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/HangingCalls.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/music/SimulatedInput.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"
#include "simulation/mac/sound/SimulatedAudio.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"
#include "support/MemoryDefaults.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using simulation::Event;
using simulation::Sounding;
using test::MemoryDefaults;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* stateKey = "alarmSavedOutputState";
constexpr const char* noDevice = "No audio output device was found. The alarm is using the system beep.";
constexpr const char* noTone = "The alarm tone couldn't start. The alarm is using the system beep.";

/// Remembers what each beep was heard on.
class CountedBeep final : public ports::SystemBeep {
public:
    explicit CountedBeep(simulation::SimulatedAudio& audio) : audio_(audio) {}
    void beep() override { outputs.push_back(audio_.defaultOutput()); }

    std::vector<std::optional<ports::AudioObjectId>> outputs;

private:
    simulation::SimulatedAudio& audio_;
};

std::vector<simulation::AudioDevice> speakerAndHeadphones()
{
    std::vector<simulation::AudioDevice> devices(2);
    devices[0].id = 73;
    devices[0].uid = "BuiltInSpeakerDevice";
    devices[0].addControls({0}, 0.3F, true);
    devices[1].id = 91;
    devices[1].uid = "Headphones";
    devices[1].transport = fourCharCode("usb ");
    devices[1].addControls({0}, 0.6F, false);
    return devices;
}

/// The machine: headphones are the default output, and the speaker is muted.
struct Machine {
    explicit Machine(Scheduler& scheduler)
        : log(scheduler), audio(log, speakerAndHeadphones(), 91), speaker(scheduler, audio)
    {
    }

    [[nodiscard]] bool isAsBefore() const
    {
        const auto wanted = speakerAndHeadphones();
        return audio.defaultOutput() == 91U && audio.device(73)->controls == wanted[0].controls &&
               audio.device(91)->controls == wanted[1].controls;
    }

    simulation::EventLog log;
    simulation::SimulatedAudio audio;
    simulation::Speaker speaker;
    simulation::SimulatedAudioEngines engines{speaker, audio};
    CountedBeep beep{audio};
    simulation::SimulatedMusic music{log};
    simulation::SimulatedInput input{[this] { music.togglePlayback(); }};
    simulation::IcuLanguage language{"no such folder", log};
    MemoryDefaults defaults;
};

/// The product's side.
struct Sound {
    Sound(Scheduler& scheduler, Machine& itsMachine) : mainActor(scheduler), machine(itsMachine) { launch(); }

    void launch()
    {
        const AlarmSoundServices services{volume,           media,      machine.engines, machine.beep, machine.defaults,
                                          machine.language, machine.log};
        player = std::make_unique<AlarmSoundPlayer>(mainActor, services);
        player->onPlaybackDegraded = [this](const std::string& message) {
            EXPECT_TRUE(mainActor.isCurrent());
            messages.push_back(message);
        };
    }

    MainActor mainActor;
    Machine& machine;
    SystemVolumeControl volume{machine.audio, machine.language};
    MediaPlayback media{mainActor, machine.music, machine.music, machine.input};
    std::vector<std::string> messages;
    std::unique_ptr<AlarmSoundPlayer> player;
};

struct HardwareTime {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
};

/// A machine and the product on it, in virtual time; the product's tasks end before the machine does.
struct LoudMac : HardwareTime, Machine {
    VirtualScheduler scheduler{clock};
    Sound sound{scheduler, *this};
    std::unique_ptr<AlarmSoundPlayer>& player = sound.player;
    std::vector<std::string>& messages = sound.messages;

    simulation::HangingCalls hanging{clock, scheduler}; // last: what hangs comes back before the rest goes
    simulation::PortCalls calls{&hanging};

    LoudMac() : Machine(hardware)
    {
        audio.faults().connect(calls, "audio");
        engines.faults().connect(calls, "audio-engine");
        music.faults().connect(calls, "music");
    }

    void playMusic()
    {
        music.setPlayback(simulation::SimulatedMusic::Playback::playing);
        music.setConsent(simulation::SimulatedMusic::Consent::granted);
    }
};

TEST(AlarmSound, MapsEverySettingToAtLeastAQuarter)
{
    const std::map<float, float> volumes{{-1.0F, 0.25F},      {0.0F, 0.25F}, {0.1F, 0.25F}, {0.55F, 0.625F},
                                         {0.8F, 0.83333333F}, {1.0F, 1.0F},  {7.0F, 1.0F}};
    for (const auto& [setting, volume] : volumes) {
        EXPECT_NEAR(AlarmSoundWorker::effectiveVolume(setting), volume, 1e-7F) << "for " << setting;
    }
    EXPECT_EQ(AlarmSoundWorker::effectiveVolume(1.0F), 1.0F);
}

TEST(AlarmSound, TakesTheSpeakerAtOnceKeepsItLoudAndGivesItBack)
{
    LoudMac mac;
    mac.player->play(1.0F);
    mac.clock.runReady();
    auto sounding = mac.speaker.sounding();
    ASSERT_EQ(sounding.size(), 1U) << "in no time";
    EXPECT_EQ(sounding[0].kind, Sounding::Kind::loop);
    EXPECT_EQ(sounding[0].device, 73U);
    EXPECT_EQ(sounding[0].gain, 1.0F);
    EXPECT_EQ(mac.audio.defaultOutput(), 73U);
    EXPECT_EQ(decodeSavedOutputState(mac.defaults.data(stateKey).value()),
              (SavedOutputState{73, 0.3F, true, 91, 0.6F, false, true}));

    mac.player->play(0.0F); // changes nothing
    mac.audio.setVolume(73, 0.0F, true);
    mac.clock.advance(899ms);
    EXPECT_EQ(mac.audio.audibleGain(73), 0.0F);
    mac.clock.advance(1ms);
    EXPECT_EQ(mac.audio.audibleGain(73), 1.0F);
    EXPECT_EQ(mac.speaker.sounding().size(), 1U);

    mac.player->stop();
    mac.clock.advance(5s);
    EXPECT_THAT(mac.speaker.sounding(), IsEmpty());
    EXPECT_TRUE(mac.isAsBefore());
    EXPECT_EQ(mac.defaults.data(stateKey), std::nullopt);
    EXPECT_THAT(mac.messages, IsEmpty());

    const auto started = mac.log.named("alarm.started");
    ASSERT_EQ(started.size(), 1U);
    EXPECT_EQ(started[0].text("mode"), "tone");
    EXPECT_EQ(*started[0].find("device"), Event::Value{std::int64_t{73}});
    EXPECT_EQ(*started[0].find("volume"), Event::Value{1.0});
    EXPECT_EQ(mac.log.named("volume.enforced").size(), 1U);
    EXPECT_EQ(mac.log.named("alarm.stopped").size(), 1U);
}

TEST(AlarmSound, FallsBackToBeepsWhenTheToneCannotStart)
{
    for (const char* const fault : {"format", "buffer", "start", "raises"}) {
        for (const auto& [setting, beeps] : std::map<float, std::size_t>{{0.1F, 1}, {0.55F, 1}, {0.8F, 2}, {1.0F, 3}}) {
            LoudMac mac;
            mac.engines.faults().set(fault);
            mac.player->play(setting);
            mac.clock.advance(899ms);
            EXPECT_THAT(mac.speaker.sounding(), IsEmpty()) << fault;
            EXPECT_THAT(mac.messages, ElementsAre(noTone));
            EXPECT_EQ(mac.log.named("alarm.started").at(0).text("mode"), "beep");

            mac.audio.setDefaultOutput(91); // the thief
            mac.clock.advance(1ms);
            EXPECT_EQ(mac.beep.outputs.size(), beeps) << "at " << setting;
            EXPECT_THAT(mac.beep.outputs, Each(73U)) << "beeps come from the speaker";
            EXPECT_EQ(mac.audio.defaultOutput(), 91U) << "and the default is as the user left it";

            mac.player->stop();
            mac.clock.advance(5s);
            EXPECT_TRUE(mac.isAsBefore());
            EXPECT_EQ(mac.beep.outputs.size(), beeps);
        }
    }
    LoudMac refusing;
    refusing.engines.faults().set("device");
    refusing.player->play(0.8F);
    refusing.clock.runReady();
    EXPECT_EQ(refusing.speaker.sounding().at(0).device, 73U) << "the default output, by now the speaker";
    EXPECT_THAT(refusing.messages, IsEmpty());
}

TEST(AlarmSound, StartsAnEngineAnewThatStopsByItselfAndBeepsIfItStopsAgain)
{
    LoudMac mac;
    mac.player->play(1.0F);
    for (int times = 0; times < 2; ++times) {
        mac.clock.advance(1s);
        mac.engines.faults().set("engine-stops", 1);
        EXPECT_THAT(mac.speaker.sounding(), IsEmpty());
        mac.clock.advance(900ms);
        ASSERT_EQ(mac.speaker.sounding().size(), 1U) << "as often as the output changes";
        EXPECT_EQ(mac.speaker.sounding()[0].gain, 1.0F);
        EXPECT_THAT(mac.messages, IsEmpty());
        mac.clock.advance(900ms);
    }
    mac.engines.faults().set("engine-stops");
    mac.clock.advance(1800ms);
    EXPECT_THAT(mac.messages, ElementsAre(noTone));
    EXPECT_EQ(mac.beep.outputs.size(), 3U);
    EXPECT_EQ(mac.log.named("alarm.started").back().text("mode"), "beep");
    mac.player->stop();
    mac.clock.advance(5s);
    EXPECT_TRUE(mac.isAsBefore());
}

TEST(AlarmSound, IsHeardWithinASecondWhenACallHangsAndUntilItIsStopped)
{
    for (const char* const port : {"audio", "audio-engine"}) {
        LoudMac mac;
        (port == std::string{"audio"} ? mac.audio.faults() : mac.engines.faults()).set("hangs", 1);
        mac.player->play(1.0F);
        mac.clock.advance(949ms);
        EXPECT_THAT(mac.beep.outputs, IsEmpty()) << port;
        mac.clock.advance(1ms);
        EXPECT_EQ(mac.beep.outputs.size(), 3U);
        mac.clock.advance(950ms);
        EXPECT_EQ(mac.beep.outputs.size(), 6U);
        EXPECT_THAT(mac.messages, ElementsAre(noTone));

        const Instant before = mac.clock.now();
        mac.player->stopAndWait();
        EXPECT_EQ(mac.clock.now() - before, 2s) << "the end of the application does not wait for ever";
        mac.clock.advance(5s);
        EXPECT_EQ(mac.beep.outputs.size(), 6U);
    }
}

TEST(AlarmSound, BeepsOnWhenTheTicksStopComing)
{
    LoudMac mac;
    mac.engines.faults().set("start");
    mac.player->play(0.1F);
    mac.clock.advance(1800ms);
    EXPECT_EQ(mac.beep.outputs.size(), 2U);
    mac.audio.faults().set("hangs", 1);
    mac.clock.advance(2s - 1ms);
    EXPECT_EQ(mac.beep.outputs.size(), 2U);
    mac.clock.advance(1ms);
    EXPECT_EQ(mac.beep.outputs.size(), 3U) << "two seconds after the last";

    LoudMac sleeper;
    sleeper.player->play(1.0F);
    sleeper.clock.advance(2s);
    sleeper.scheduler.setAsleep(true);
    sleeper.clock.advance(1h);
    sleeper.scheduler.setAsleep(false);
    sleeper.clock.advance(10s);
    EXPECT_THAT(sleeper.beep.outputs, IsEmpty()) << "nobody is late who slept";
}

TEST(AlarmSound, MakesLoudWhatTheSystemDoesNotRefuse)
{
    struct Case {
        const char* refused;
        std::optional<ports::AudioObjectId> defaultOutput;
        float volume;
        bool isMuted;
    };
    for (const auto& [refused, output, volume, isMuted] : std::vector<Case>{
             {"write-volume", 73, 0.3F, false}, {"write-mute", 73, 1.0F, true}, {"write-default", 91, 1.0F, false}}) {
        LoudMac mac;
        mac.audio.faults().set(refused);
        mac.player->play(1.0F);
        mac.clock.advance(1s);
        EXPECT_EQ(mac.audio.defaultOutput(), output) << refused;
        EXPECT_EQ(mac.audio.device(73)->volume(), volume) << refused;
        EXPECT_EQ(mac.audio.device(73)->isMuted(), isMuted) << refused;
        EXPECT_EQ(mac.speaker.sounding().at(0).device, 73U) << refused;
        mac.audio.faults().clear();
        mac.clock.advance(900ms);
        EXPECT_EQ(mac.speaker.sounding().at(0).gain, 1.0F) << refused << ": as soon as it is refused no more";
        mac.player->stop();
        mac.clock.runReady();
        EXPECT_TRUE(mac.isAsBefore()) << refused;
    }
}

TEST(AlarmSound, PausesMusicBeforeAndAfterTheTakeOver)
{
    LoudMac mac;
    mac.playMusic();
    std::vector<std::string> order;
    mac.calls.decideBy([&](std::string_view port, std::string_view operation) {
        if (operation == "runScript" || (port == "audio" && operation == "writeUInt32" && order.size() == 1)) {
            order.emplace_back(operation);
        }
        return simulation::PortCalls::Fate::passes;
    });
    mac.player->play(0.8F);
    mac.clock.runReady();
    EXPECT_THAT(order, ElementsAre("runScript", "writeUInt32", "runScript"));
}

TEST(AlarmSound, WithoutASpeakerUsesTheDefaultOutputAndWithoutAnyBeepsAndSavesNothing)
{
    LoudMac mac;
    mac.audio.faults().set("read-devices");
    mac.audio.faults().set("read-default");
    mac.playMusic();
    mac.player->play(0.8F);
    mac.clock.advance(900ms);
    EXPECT_THAT(mac.messages, ElementsAre(noDevice));
    EXPECT_EQ(mac.beep.outputs.size(), 2U);
    EXPECT_EQ(mac.defaults.data(stateKey), std::nullopt);
    const auto started = mac.log.named("alarm.started");
    ASSERT_EQ(started.size(), 1U);
    EXPECT_EQ(*started[0].find("device"), Event::Value{});
    mac.player->stop();
    mac.clock.advance(5s);
    EXPECT_TRUE(mac.isAsBefore());
    EXPECT_EQ(mac.beep.outputs.size(), 2U);

    LoudMac speakerless;
    speakerless.audio.remove(73);
    speakerless.player->play(0.8F);
    speakerless.clock.runReady();
    EXPECT_EQ(speakerless.speaker.sounding().at(0).device, 91U) << "the default output, whatever it is";
}

TEST(AlarmSound, IsUndoneAtTheLaunchAfterACrash)
{
    LoudMac mac;
    mac.player->play(0.8F);
    mac.clock.advance(2s);
    mac.player.reset(); // the process dies while the alarm sounds
    std::optional<ports::AudioObjectId> outputAtRemoval;
    mac.defaults.onRemove = [&] { outputAtRemoval = mac.audio.defaultOutput(); };
    mac.sound.launch();
    mac.player->restoreLeftoverState();
    mac.clock.runReady();
    EXPECT_TRUE(mac.isAsBefore());
    EXPECT_EQ(outputAtRemoval, 73U) << "forgotten before it is restored, lest a bad one ends each launch";
    EXPECT_EQ(mac.defaults.data(stateKey), std::nullopt);
}

TEST(AlarmSound, LeavesASavedStateAloneThatIsDamagedOrItsOwn)
{
    LoudMac mac;
    const auto damaged = bytesOf(R"({"speakerDeviceID":73,"speakerVolume":)");
    mac.defaults.setData(stateKey, damaged);
    mac.player->restoreLeftoverState();
    mac.player->stop(); // while idle
    mac.clock.runReady();
    EXPECT_EQ(mac.defaults.data(stateKey), damaged);
    EXPECT_TRUE(mac.isAsBefore());

    mac.player->play(0.8F);
    mac.player->restoreLeftoverState();
    mac.clock.runReady();
    EXPECT_EQ(mac.audio.defaultOutput(), 73U) << "the alarm goes on";
    EXPECT_TRUE(mac.defaults.data(stateKey).has_value());
}

TEST(AlarmSound, MayDieWhileItWaitsForMusic)
{
    LoudMac mac;
    mac.playMusic();
    mac.music.faults().set("script-hangs");
    mac.player->play(0.8F);
    mac.player->stop();
    mac.clock.advance(100ms);
    mac.player.reset();
    mac.clock.advance(5s);
    EXPECT_TRUE(mac.isAsBefore());
    EXPECT_THAT(mac.speaker.sounding(), IsEmpty());
}

TEST(ThreadsAlarmSound, PlaysStopsAndDiesOnRealThreads)
{
    ThreadScheduler scheduler;
    Machine machine{scheduler};
    Sound sound{scheduler, machine};
    for (const char* const fault : {"", "start"}) {
        machine.engines.faults().clear();
        machine.engines.faults().set(fault);
        sound.player->play(0.8F);
        sound.player->stopAndWait();
        EXPECT_TRUE(machine.isAsBefore());
        EXPECT_THAT(machine.speaker.sounding(), IsEmpty());
        sound.player->play(0.8F);
        sound.launch(); // drops the old one in the middle of whatever it does
        sound.player->restoreLeftoverState();
        sound.player->stopAndWait();
        EXPECT_TRUE(machine.isAsBefore());
    }
    sound.player->play(0.8F);
    sound.player->stopAndWait();
    post(scheduler.mainExecutor(), [&scheduler] { scheduler.stopMain(); });
    scheduler.runMain();
    EXPECT_THAT(sound.messages, ElementsAre(noTone)) << "on the main thread, from the last player that lives";
}

} // namespace
} // namespace sentrel
