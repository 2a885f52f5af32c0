#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps what the session hears of the alarm.
class SpeakerListener final : public Audience {
public:
    void happened(const Event& event) override
    {
        if (event.name == "alarm.heard" || event.name == "alarm.unheard") {
            heard.push_back(event.name);
        }
    }
    void willPerform(double, const Step&, const Action&) override {}
    void checked(double, const Step&, const std::vector<Mismatch>&) override {}

    std::vector<std::string> heard;
};

/// What the session hears of the alarm, then the expectations of these steps that don't hold, as sentences.
std::vector<std::string> played(const std::string& steps)
{
    const TemporaryFolder folder;
    const Scenario scenario = parseScenario("steps:\n" + steps, folder.path() / "witness.yaml");
    const PlayOptions options{.out = {}, .resources = SENTREL_SOURCE_DIR "/resources", .seed = 1};
    SpeakerListener listener;
    const PlayResult result = play(scenario, options, listener);
    for (const Mismatch& mismatch : result.mismatches) {
        listener.heard.push_back(sentence(mismatch));
    }
    return listener.heard;
}

TEST(Witness, AnEngineThatPlaysNothingFailsTheExpectationOfATone)
{
    const std::string theft = "- {at: 1s, do: arm}\n- {at: 2s, do: unplug}\n"
                              "- {at: 3s, expect: {isAlarmActive: true, sound: {mode: tone, device: 73}}}\n";
    EXPECT_THAT(played(theft), ElementsAre("alarm.heard"));
    EXPECT_THAT(played("- {at: 0s, do: {fail: {audio-engine: silent}}}\n" + theft),
                ElementsAre("alarm.unheard", R"(expected sound to be {"mode":"tone","device":73}, but it is null)"));
}

TEST(Witness, HearsNoToneThroughAMuteAndBeepsAlsoBetweenThem)
{
    EXPECT_THAT(played(R"(
- {at: 1s, do: arm}
- {at: 2s, do: unplug}
- {at: 3s, do: {volume: {device: 73, muted: true}}}
- {at: 3s, expect: {isAlarmActive: true, sound: null}}
- {at: 4s, expect: {sound: {mode: tone, volume: 0.833333}}}
- {at: 5s, do: stop-alarm}
- {at: 5s, expect: {isAlarmActive: false, sound: null}}
- {at: 6s, do: {fail: {audio-engine: start}}}
- {at: 6s, do: plug-in}
- {at: 10s, do: unplug}
- {at: 10800ms, expect: {isAlarmActive: true, sound: null}}
- {at: 10900ms, expect: {sound: {mode: beep, device: 73}}}
- {at: 11700ms, expect: {sound: {mode: beep}}}
- {at: 20s, do: stop-alarm}
- {at: 22s, expect: {sound: null}}
)"),
                ElementsAre("alarm.heard"));
}

TEST(Witness, SettingsAreThoseOnTheDisk)
{
    EXPECT_THAT(played(R"(
- {at: 1s, do: {fail: {files: write}}}
- {at: 2s, do: {set: {alarmVolume: 0.5}}}
- {at: 2s, expect: {settings: {alarmVolume: 0.8}}}
- {at: 3s, do: {fail: {files: none}}}
- {at: 4s, do: {set: {capturePhoto: false}}}
- {at: 4s, expect: {settings: {alarmVolume: 0.5, capturePhoto: false}}}
)"),
                IsEmpty());
}

TEST(Witness, ALostDefaultOutputIsNone)
{
    EXPECT_THAT(played(R"(
- {at: 1s, expect: {defaultOutput: 73}}
- {at: 2s, do: {default-output: none}}
- {at: 2s, expect: {defaultOutput: none}}
)"),
                IsEmpty());
}

} // namespace
} // namespace sentrel::simulation
