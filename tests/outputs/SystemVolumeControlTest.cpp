#include "outputs/SystemVolumeControl.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/sound/SimulatedAudio.hpp"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace sentrel {
namespace {

using simulation::AudioControl;
using simulation::AudioDevice;

AudioDevice makeDevice(ports::AudioObjectId id, std::string name, std::string uid, float volume = 0.5F,
                       bool isMuted = false)
{
    AudioDevice device;
    device.id = id;
    device.name = std::move(name);
    device.uid = std::move(uid);
    device.addControls({0}, volume, isMuted);
    return device;
}

AudioDevice with(AudioDevice device, std::uint32_t transport, std::vector<std::uint32_t> outputBuffers)
{
    device.transport = transport;
    device.outputBuffers = std::move(outputBuffers);
    return device;
}

struct SoundingMac {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::IcuLanguage language{"no such folder", log};
    simulation::SimulatedAudio audio;
    SystemVolumeControl control{audio, language};

    SoundingMac(std::vector<AudioDevice> devices, std::optional<ports::AudioObjectId> defaultOutput)
        : audio(log, std::move(devices), defaultOutput)
    {
    }
};

constexpr std::uint32_t builtIn = fourCharCode("bltn");
constexpr std::uint32_t usb = fourCharCode("usb ");

TEST(SystemVolumeControl, FindsTheBuiltInSpeakerByItsIdentifierItsNameOrItsPlace)
{
    const auto headphones = makeDevice(61, "External Headphones", "BuiltInHeadphoneOutputDevice");
    const auto speakerByUid = makeDevice(73, "Built-in Output", "BuiltInSpeakerDevice");
    const auto speakerByLowerUid = makeDevice(74, "Output", "appleBUILTINspeaker-0");
    const auto speakerByName = makeDevice(75, "macbook pro SPEAKERS", "AppleHDA:1");
    const auto microphone = with(makeDevice(10, "Speakerphone", "BuiltInSpeaker"), builtIn, {0, 0});
    const auto noBuffers = with(makeDevice(11, "Speaker", "BuiltInSpeaker"), builtIn, {});
    const auto usbSpeaker = with(makeDevice(12, "USB Speaker", "BuiltInSpeakerLookalike"), usb, {2});
    struct Case {
        std::vector<AudioDevice> devices;
        std::optional<ports::AudioObjectId> speaker;
    };
    const std::vector<Case> cases{
        {{headphones, speakerByUid}, 73},
        {{headphones, speakerByLowerUid}, 74},
        {{headphones, speakerByName, speakerByUid}, 75}, // the first that is one in either way
        {{usbSpeaker, microphone, noBuffers, headphones}, 61},
        {{headphones, makeDevice(62, "Line Out", "BuiltInLine")}, 61},
        {{usbSpeaker, microphone, noBuffers}, std::nullopt},
        {{}, std::nullopt},
    };
    for (const Case& example : cases) {
        SoundingMac mac{example.devices, std::nullopt};
        EXPECT_EQ(mac.control.findBuiltInSpeaker(), example.speaker);
    }

    SoundingMac nameless{{headphones, speakerByUid}, std::nullopt};
    nameless.audio.faults().set("read-uid");
    nameless.audio.faults().set("read-name");
    EXPECT_EQ(nameless.control.findBuiltInSpeaker(), 61U) << "what can't be read counts as empty";
    for (const char* const fault : {"read-devices", "read-channels", "read-transport"}) {
        SoundingMac unreadable{{speakerByUid}, std::nullopt};
        unreadable.audio.faults().set(fault);
        EXPECT_EQ(unreadable.control.findBuiltInSpeaker(), std::nullopt) << fault;
    }
}

TEST(SystemVolumeControl, TakesTheSpeakerOverAndPutsEverythingBack)
{
    struct Case {
        const char* what;
        std::optional<ports::AudioObjectId> defaultOutput;
        bool speakerMuted;
        bool headphonesMuted;
        SavedOutputState state;
    };
    const std::vector<Case> cases{
        {"the speaker is the default", 73, false, true, {73, 0.3F, false, 73, 0.3F, false, false}},
        {"a muted speaker is the default", 73, true, false, {73, 0.3F, true, 73, 0.3F, true, false}},
        {"headphones are the default", 91, true, false, {73, 0.3F, true, 91, 0.6F, false, true}},
        {"muted headphones are the default", 91, false, true, {73, 0.3F, false, 91, 0.6F, true, true}},
        {"no default can be read", std::nullopt, true, false, {73, 0.3F, true, {}, {}, false, false}},
    };
    for (const Case& example : cases) {
        SoundingMac mac{{makeDevice(73, "Speaker", "", 0.3F, example.speakerMuted),
                         makeDevice(91, "Headphones", "", 0.6F, example.headphonesMuted)},
                        example.defaultOutput};
        const auto before = mac.audio.devices();

        const auto state = mac.control.takeOver(73, 0.9F);
        EXPECT_EQ(state, example.state) << example.what;
        EXPECT_EQ(mac.audio.audibleGain(73), 0.9F) << example.what;
        EXPECT_EQ(mac.audio.defaultOutput(), example.defaultOutput ? std::optional{73U} : std::nullopt);

        mac.audio.setVolume(91, 0.1F, !example.headphonesMuted); // the thief
        mac.control.restore(state);
        EXPECT_EQ(mac.audio.defaultOutput(), example.defaultOutput) << example.what;
        EXPECT_EQ(mac.audio.device(73)->controls, before[0].controls) << example.what;
        const bool headphonesAreBack = mac.audio.device(91)->controls == before[1].controls;
        EXPECT_EQ(headphonesAreBack, state.switchedDefaultDevice) << example.what;
    }
}

TEST(SystemVolumeControl, UsesWhateverControlsADeviceHas)
{
    AudioDevice plain = makeDevice(73, "Speaker", "");
    plain.controls = {{{AudioControl::volumeScalar, 0}, 0.2F}};
    AudioDevice stereo = plain;
    stereo.id = 74;
    stereo.controls = {{{AudioControl::virtualMainVolume, 2}, 0.4F},
                       {{AudioControl::volumeScalar, 1}, 0.2F},
                       {{AudioControl::volumeScalar, 4}, 0.1F},
                       {{AudioControl::mute, 3}, 1.0F},
                       {{AudioControl::mute, 5}, 1.0F},
                       {{AudioControl::volumeScalar, 5}, 0.1F}};
    AudioDevice bare = plain;
    bare.id = 75;
    bare.controls.clear();
    SoundingMac mac{{plain, stereo, bare}, std::nullopt};

    EXPECT_EQ(mac.control.volume(73), 0.2F);
    EXPECT_EQ(mac.control.volume(74), 0.4F) << "the virtual main volume before the plain one";
    EXPECT_EQ(mac.control.volume(75), std::nullopt);
    EXPECT_TRUE(mac.control.isMuted(74));
    EXPECT_FALSE(mac.control.isMuted(75));

    for (const ports::AudioObjectId device : {73U, 74U, 75U, 99U}) {
        mac.control.enforce(device, 1.5F);
    }
    const decltype(plain.controls) plainAfter{{{AudioControl::volumeScalar, 0}, 1.0F}};
    EXPECT_EQ(mac.audio.device(73)->controls, plainAfter);
    const decltype(plain.controls) stereoAfter{{{AudioControl::virtualMainVolume, 2}, 1.0F},
                                               {{AudioControl::volumeScalar, 1}, 1.0F},
                                               {{AudioControl::volumeScalar, 4}, 1.0F},
                                               {{AudioControl::mute, 3}, 0.0F},
                                               {{AudioControl::mute, 5}, 1.0F},
                                               {{AudioControl::volumeScalar, 5}, 0.1F}};
    EXPECT_EQ(mac.audio.device(74)->controls, stereoAfter) << "elements 0 to 4 and no other";

    mac.audio.faults().set("read-volume");
    EXPECT_EQ(mac.control.volume(73), std::nullopt);
    EXPECT_EQ(mac.control.takeOver(73, 0.5F).speakerVolume, 0.0F);
}

} // namespace
} // namespace sentrel
