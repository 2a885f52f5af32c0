#include "simulation/stage/PlayedScenario.hpp"
#include "support/Files.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LockedScenarios : public PlayedScenario {};

TEST_F(LockedScenarios, AMacWhoseModelNamesNoFamilyArmsIfItsProductIsAMacBook)
{
    EXPECT_THAT(playedText("mac: {model: 'Mac14,2', productName: 'MacBook Air (M2, 2022)'}\nsteps:\n"
                           "- {at: 1s, do: arm}\n- {at: +1s, expect: {isArmed: true}}\n"),
                IsEmpty());
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
    EXPECT_THAT(heard({{"photo.none", "why"}}), ElementsAre("photo.none not authorized", "photo.none photo failed",
                                                            "photo.none timed out", "photo.none no camera"));
}

TEST_F(LockedScenarios, EveryPhotoIsTheFileThatIsNamedUntilItIsTakenBack)
{
    test::put(folder.path() / "noise.jpg", "no photo at all");
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
    EXPECT_THAT(heard({{"passcode", "outcome"}, {"passcode.set", "saved"}, {"typed.nowhere", ""}}),
                ElementsAre("passcode.set ", "typed.nowhere ", "passcode.set ", "passcode.set ", "passcode incorrect",
                            "passcode unlocked"));
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
