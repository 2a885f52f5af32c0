#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Remembers the events of some names, each with one of its fields.
class AlarmListener final : public Audience {
public:
    void happened(const Event& event) override
    {
        for (const auto& [name, field] : wanted) {
            if (event.name == name) {
                heard.push_back(name + " " + std::string{event.text(field)});
            }
        }
    }
    void willPerform(double, const Step&, const Action&) override {}
    void checked(double, const Step&, const std::vector<Mismatch>&) override {}

    std::vector<std::pair<std::string, std::string>> wanted{
        {"passcode", "outcome"}, {"photo.none", "why"}, {"passcode.set", "saved"}, {"typed.nowhere", ""}};
    std::vector<std::string> heard;
};

class LockedScenarios : public testing::Test {
protected:
    /// What didn't hold, as sentences.
    std::vector<std::string> played(const Scenario& scenario)
    {
        const PlayOptions options{.out = {}, .resources = SENTREL_SOURCE_DIR "/resources", .seed = 1};
        std::vector<std::string> sentences;
        for (const Mismatch& mismatch : play(scenario, options, listener).mismatches) {
            sentences.push_back(sentence(mismatch));
        }
        return sentences;
    }

    std::vector<std::string> playedText(const std::string& text)
    {
        return played(parseScenario(text, folder.path() / "talk.yaml"));
    }

    TemporaryFolder folder;
    AlarmListener listener;
};

TEST_F(LockedScenarios, ThatComeWithTheProgramHold)
{
    for (const char* name : {"night-photo", "wrong-passcodes", "two-displays", "cafe-theft", "quitting",
                             "control-panel", "bulk-deletion", "passcode-sheet"}) {
        const std::filesystem::path scenarios = SENTREL_SOURCE_DIR "/scenarios";
        EXPECT_THAT(played(readScenario(scenarios / (std::string{name} + ".yaml"))), IsEmpty()) << name;
    }
}

TEST_F(LockedScenarios, AMacWhoseModelNamesNoFamilyArmsIfItsProductIsAMacBook)
{
    const std::string steps = "\nsteps:\n- {at: 1s, do: arm}\n- {at: +1s, expect: {isArmed: ";
    EXPECT_THAT(playedText("mac: {model: 'Mac14,2', productName: 'MacBook Air (M2, 2022)'}" + steps + "true}}\n"),
                IsEmpty());
    EXPECT_THAT(playedText("mac: {model: 'Mac14,3', productName: 'Mac mini (M2, 2023)'}" + steps + "false}}\n"),
                IsEmpty());
    EXPECT_THAT(playedText("mac: {model: 'Mac14,2'}" + steps + "false}}\n"), IsEmpty());
}

TEST_F(LockedScenarios, ACameraThatIsForbiddenMissingLateOrBrokenGivesNoPhotoAndTheReason)
{
    const std::string text = R"(
mac: {camera: {authorization: notDetermined, devices: [{name: Studio, type: external}]}}
steps:
- {at: 1s, do: arm}
- {at: 2s, do: unplug}
- {at: 3s, do: {camera: {authorization: authorized, fail: true}}}
- {at: 4s, do: plug-in}
- {at: 5s, do: unplug}
- {at: 6500ms, expect: {alerts: 2, photo: null, cameraSession: on}}
- {at: 7s, do: {camera: {fail: false, delay: 6s}}}
- {at: 8s, do: plug-in}
- {at: 9s, do: unplug}
- {at: 13900ms, expect: {alerts: 2}}
- {at: 14100ms, expect: {alerts: 3, photo: null}}
- {at: 40s, do: {camera: none}}
- {at: 41s, do: plug-in}
- {at: 42s, do: unplug}
- {at: 43s, expect: {alerts: 4, lastAlert: {photo: false}, cameraSession: off}}
)";
    EXPECT_THAT(playedText(text), IsEmpty());
    EXPECT_THAT(listener.heard, ElementsAre("photo.none not authorized", "photo.none photo failed",
                                            "photo.none timed out", "photo.none no camera"));
}

TEST_F(LockedScenarios, EveryPhotoIsTheFileThatIsNamedUntilItIsTakenBack)
{
    std::ofstream{folder.path() / "noise.jpg", std::ios::binary} << "no photo at all";
    const std::string text = R"(
mac: {camera: {devices: built-in, photo: noise.jpg}}
steps:
- {at: 1s, do: arm}
- {at: 2s, do: unplug}
- {at: 4s, expect: {lastAlert: {photo: true}, photo: {width: null, height: null, brightness: 1}}}
- {at: 5s, do: {camera: {photo: none, brightness: 0.2}}}
- {at: 6s, do: plug-in}
- {at: 7s, do: unplug}
- {at: 9s, expect: {photo: {width: 1600, brightness: 0.2}}}
- {at: 9s, expect: {photo: {brightness: 0.25}}}
)";
    const auto sentences = playedText(text);
    ASSERT_EQ(sentences.size(), 1U);
    EXPECT_THAT(sentences.front(), testing::StartsWith("expected photo.brightness to be 0.25, but it is 0."));
}

TEST_F(LockedScenarios, AKeychainThatRefusesSetsNoPasscodeAndUnlocksNothing)
{
    const std::string text = R"(
settings: {lockScreenOnArm: true}
steps:
- {at: 1s, do: {keychain: {dataProtection: locked, legacy: denied}}}
- {at: 2s, do: {set-passcode: "2468"}}
- {at: 3s, do: arm}
- {at: 4s, do: {type-passcode: "2468"}}
- {at: 5s, expect: {cover: hidden, coverMessage: null, coverWindows: 0}}
- {at: 6s, do: disarm}
- {at: 7s, do: {keychain: {dataProtection: open, legacy: open, fail: {add: 1}}}}
- {at: 8s, do: {set-passcode: "1357"}}
- {at: 9s, do: {keychain: {fail: none}}}
- {at: 10s, do: {set-passcode: "2468"}}
- {at: 11s, do: arm}
- {at: 12s, do: {keychain: {fail: copy}}}
- {at: 13s, do: {type-passcode: "2468"}}
- {at: 14s, expect: {cover: shown}}
- {at: 15s, do: {keychain: {fail: none}}}
- {at: 16s, do: {type-passcode: "2468"}}
- {at: 17s, expect: {cover: hidden}}
)";
    EXPECT_THAT(playedText(text), IsEmpty());
    EXPECT_THAT(listener.heard, ElementsAre("passcode.set ", "typed.nowhere ", "passcode.set ", "passcode.set ",
                                            "passcode incorrect", "passcode unlocked"));
}

TEST_F(LockedScenarios, APasscodeTypedInALockoutIsNotLeftInTheFieldForTheNext)
{
    const std::string text = R"(
mac: {passcode: "2468", displays: 0}
settings: {lockScreenOnArm: true}
steps:
- {at: 1s, do: arm}
- {at: 2s, expect: {cover: hidden, coverWindows: 0, coverMessage: null}}
- {at: 3s, do: {displays: 1}}
- {at: 3s, expect: {cover: shown, coverWindows: 1}}
- {at: 4s, do: {type-passcode: "1"}}
- {at: 5s, do: {type-passcode: "2"}}
- {at: 6s, do: {type-passcode: "3"}}
- {at: 7s, do: {type-passcode: "4"}}
- {at: 8s, do: {type-passcode: "5"}}
- {at: 9s, do: {type-passcode: "6"}}
- {at: 9s, expect: {cover: locked-out}}
- {at: 39s, do: {type-passcode: "2468"}}
- {at: 40s, expect: {cover: hidden}}
)";
    EXPECT_THAT(playedText(text), IsEmpty());
}

TEST_F(LockedScenarios, AreRefusedBeforeTheFirstStepWhenTheKeychainHasNoSuchFault)
{
    try {
        static_cast<void>(playedText("steps:\n- {at: 0s, do: {keychain: {fail: ad}}}\n"));
        FAIL() << "accepted";
    } catch (const PlayError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(":2: unknown fault of keychain 'ad'; did you mean 'add'?"));
    }
}

} // namespace
} // namespace sentrel::simulation
