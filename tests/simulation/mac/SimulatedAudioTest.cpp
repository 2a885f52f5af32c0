#include "simulation/mac/sound/SimulatedAudio.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sentrel::simulation {
namespace {

TEST(SimulatedAudio, TheEarHearsTheMeanOfTheVolumesUnlessMutedThroughADefaultOutputThatMoves)
{
    constexpr std::uint32_t outp = fourCharCode("outp");
    constexpr ports::AudioPropertyAddress defaultDevice{fourCharCode("dOut"), fourCharCode("glob"), 0};
    AudioDevice microphone{.id = 60, .name = "Microphone", .uid = "BuiltInMicrophoneDevice", .outputBuffers = {}};
    AudioDevice speaker{.id = 73, .name = "MacBook Pro Speakers", .uid = "BuiltInSpeakerDevice"};
    speaker.addControls({0, 2}, 0.5F, false);
    AudioDevice headphones{.id = 91, .name = "Headphones", .uid = "usb", .transport = fourCharCode("usb ")};
    headphones.controls = {{{fourCharCode("volm"), 1}, 0.2F}, {{fourCharCode("volm"), 2}, 0.4F}};
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    SimulatedAudio audio{log, {microphone, speaker, headphones}, 91};

    EXPECT_FLOAT_EQ(audio.audibleGain(91), 0.3F);
    EXPECT_EQ(audio.writeFloat32(73, {fourCharCode("vmvc"), outp, 2}, 7.0F), 0);
    EXPECT_FLOAT_EQ(audio.audibleGain(73), 0.75F) << "clamped to 1";
    EXPECT_EQ(audio.writeUInt32(73, {fourCharCode("mute"), outp, 2}, 1), 0);
    EXPECT_EQ(audio.audibleGain(73), 0.0F);
    EXPECT_EQ(audio.audibleGain(60), 0.0F) << "a microphone";
    EXPECT_EQ(audio.audibleGain(99), 0.0F) << "gone";

    EXPECT_NE(audio.writeUInt32(1, defaultDevice, 60), 0) << "a microphone";
    EXPECT_NE(audio.writeUInt32(1, defaultDevice, 99), 0);
    EXPECT_TRUE(audio.remove(91));
    EXPECT_EQ(audio.readUInt32(1, defaultDevice), 73U);
    EXPECT_FALSE(audio.add({.id = 73})) << "taken";
    EXPECT_THROW((SimulatedAudio{log, {speaker}, 99}), std::invalid_argument);
}

} // namespace
} // namespace sentrel::simulation
