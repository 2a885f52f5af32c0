#include "simulation/mac/sound/SimulatedAudio.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sentrel::simulation {
namespace {

using Address = ports::AudioPropertyAddress;

constexpr std::uint32_t glob = fourCharCode("glob");
constexpr std::uint32_t outp = fourCharCode("outp");
constexpr std::uint32_t vmvc = fourCharCode("vmvc");
constexpr std::uint32_t volm = fourCharCode("volm");
constexpr std::uint32_t mute = fourCharCode("mute");
constexpr Address defaultDevice{fourCharCode("dOut"), glob, 0};

struct AudioMachine {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    SimulatedAudio audio{log, devices(), 91};

    static std::vector<AudioDevice> devices()
    {
        AudioDevice microphone{.id = 60, .name = "Microphone", .uid = "BuiltInMicrophoneDevice", .outputBuffers = {}};
        AudioDevice speaker{.id = 73, .name = "MacBook Pro Speakers", .uid = "BuiltInSpeakerDevice"};
        speaker.addControls({0, 2}, 0.5F, false);
        AudioDevice headphones{.id = 91, .name = "Headphones", .uid = "usb", .transport = fourCharCode("usb ")};
        headphones.controls = {{{volm, 1}, 0.2F}, {{volm, 2}, 0.4F}};
        return {microphone, speaker, headphones};
    }
};

TEST(SimulatedAudio, TheEarHearsTheMeanOfTheMainVolumesElseOfTheChannelsUnlessMuted)
{
    AudioMachine machine;
    auto& audio = machine.audio;
    EXPECT_FLOAT_EQ(audio.audibleGain(91), 0.3F);
    EXPECT_EQ(audio.writeFloat32(73, {vmvc, outp, 2}, 7.0F), 0);
    EXPECT_FLOAT_EQ(audio.audibleGain(73), 0.75F) << "clamped to 1";
    EXPECT_EQ(audio.writeUInt32(73, {mute, outp, 2}, 1), 0);
    EXPECT_EQ(audio.audibleGain(73), 0.0F);
    EXPECT_TRUE(audio.add({.id = 5}));
    EXPECT_EQ(audio.audibleGain(5), 1.0F) << "no volume control at all";
    EXPECT_EQ(audio.audibleGain(60), 0.0F) << "a microphone";
    EXPECT_EQ(audio.audibleGain(99), 0.0F) << "gone";

    EXPECT_TRUE(audio.setVolume(91, 0.1F, true));
    EXPECT_FALSE(audio.setVolume(99, 0.1F, true));
    EXPECT_FLOAT_EQ(*audio.device(91)->volume(), 0.1F);
    EXPECT_FALSE(audio.device(91)->isMuted()) << "it has no mute";
    EXPECT_EQ(jsonLine(machine.log.named("volume.changed").at(0)),
              R"({"at": 0, "event": "volume.changed", "device": 91, "volume": 0.1, "muted": false})");
}

TEST(SimulatedAudio, TheDefaultOutputMovesWhenItIsUnpluggedAndMayBeNone)
{
    AudioMachine machine;
    auto& audio = machine.audio;
    int changes = 0;
    audio.observeChanges([&] { ++changes; });
    EXPECT_NE(audio.writeUInt32(1, defaultDevice, 60), 0) << "a microphone";
    EXPECT_NE(audio.writeUInt32(1, defaultDevice, 99), 0);
    EXPECT_TRUE(audio.remove(91));
    EXPECT_FALSE(audio.remove(91));
    EXPECT_EQ(audio.readUInt32(1, defaultDevice), 73U);
    EXPECT_TRUE(audio.setDefaultOutput(std::nullopt));
    EXPECT_EQ(audio.readUInt32(1, defaultDevice), std::nullopt);
    EXPECT_EQ(audio.writeUInt32(1, defaultDevice, 73), 0);
    EXPECT_FALSE(audio.add({.id = 73})) << "taken";
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(machine.log.named("default-output.changed").size(), 3U);
    EXPECT_THROW((SimulatedAudio{machine.log, AudioMachine::devices(), 99}), std::invalid_argument);
}

} // namespace
} // namespace sentrel::simulation
