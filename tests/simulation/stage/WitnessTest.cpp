#include "simulation/stage/PlayedScenario.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Witness : public PlayedScenario {
protected:
    /// The alarm as the session hears it, then the expectations of these steps that don't hold, as sentences.
    std::vector<std::string> witnessed(const std::string& steps)
    {
        events.clear();
        const auto mismatches = playedText("steps:\n" + steps);
        auto all = heard({{"alarm.heard", ""}, {"alarm.unheard", ""}});
        all.insert(all.end(), mismatches.begin(), mismatches.end());
        return all;
    }
};

TEST_F(Witness, AnEngineThatPlaysNothingFailsTheExpectationOfATone)
{
    const std::string theft = "- {at: 1s, do: arm}\n- {at: 2s, do: unplug}\n"
                              "- {at: 3s, expect: {isAlarmActive: true, sound: {mode: tone, device: 73}}}\n";
    EXPECT_THAT(witnessed(theft), ElementsAre("alarm.heard "));
    EXPECT_THAT(witnessed("- {at: 0s, do: {fail: {audio-engine: silent}}}\n" + theft),
                ElementsAre("alarm.unheard ", R"(expected sound to be {"mode":"tone","device":73}, but it is null)"));
}

TEST_F(Witness, HearsNoToneThroughAMuteAndBeepsAlsoBetweenThem)
{
    EXPECT_THAT(witnessed(R"(
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
                ElementsAre("alarm.heard "));
}

TEST_F(Witness, SettingsAreThoseOnTheDiskAndALostDefaultOutputIsNone)
{
    EXPECT_THAT(witnessed(R"(
- {at: 1s, do: {fail: {files: write}}}
- {at: 2s, do: {set: {alarmVolume: 0.5}}}
- {at: 2s, expect: {settings: {alarmVolume: 0.8}}}
- {at: 3s, do: {fail: {files: none}}}
- {at: 4s, do: {set: {capturePhoto: false}}}
- {at: 4s, expect: {settings: {alarmVolume: 0.5, capturePhoto: false}, defaultOutput: 73}}
- {at: 5s, do: {default-output: none}}
- {at: 5s, expect: {defaultOutput: none}}
)"),
                IsEmpty());
}

} // namespace
} // namespace sentrel::simulation
