#include "simulation/stage/PlayedScenario.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CloudScenarios : public PlayedScenario {};

TEST_F(CloudScenarios, WhatICloudAnswersDuringTheQuitDoesNoHarm)
{
    for (int latency = 10; latency <= 500; latency += 10) {
        EXPECT_THAT(playedText("title: Quit\nmac: {icloud: {account: maya, latency: " + std::to_string(latency) +
                               "ms}}\nsettings: {requirePasswordForActions: false}\nsteps:\n"
                               "- {at: 100ms, do: quit}\n- {at: +20s, expect: {quit: quit}}\n"),
                    IsEmpty())
            << latency;
    }
}

TEST_F(CloudScenarios, ACommandThatTheServerRefusesEndsNoPlay)
{
    EXPECT_THAT(playedText(R"(
mac: {icloud: maya}
steps:
- {at: 5s, do: {icloud: {quota: full}}}
- {at: 6s, do: {phone: arm}}
- {at: 9s, expect: {isArmed: false}}
- {at: 10s, do: {icloud: {quota: ok}}}
- {at: 11s, do: {phone: arm}}
- {at: 12s, expect: {isArmed: true}}
)"),
                IsEmpty());
    EXPECT_THAT(told.str(), HasSubstr("iCloud refuses what the phone says: “quotaExceeded”."));
    EXPECT_THAT(told.str(), testing::Not(HasSubstr("phone.command")));
}

TEST_F(CloudScenarios, AFullStorageIsToldUntilTheNextUser)
{
    EXPECT_THAT(playedText(R"(
mac: {icloud: maya}
steps:
- {at: 1s, do: {icloud: {quota: full}}}
- {at: 2s, do: arm}
- {at: 3s, do: unplug}
- {at: 5s, expect: {infoMessage: "Your iCloud storage is full.\nNew alerts are saved on this Mac."}}
- {at: 6s, do: {icloud: {quota: ok}}}
- {at: 7s, do: {delete-alerts: all}}
- {at: 8s, do: {icloud: {user: bob}}}
- {at: 20s, do: {network: down}}
- {at: 40s, do: plug-in}
- {at: 41s, do: unplug}
- {at: 45s, expect: {infoMessage: Some alerts are waiting to upload to iCloud.}}
)"),
                IsEmpty());
}

TEST_F(CloudScenarios, ThePhoneLearnsThatAMacThatQuitsIsNotArmedThoughAnEarlierPublicationHangs)
{
    EXPECT_THAT(playedText(R"(
mac: {icloud: maya}
settings: {requirePasswordForActions: false}
steps:
- {at: 2s, do: arm}
- {at: 10s, expect: {phone: {macs: [{isArmed: true}]}}}
- {at: 20s, do: {icloud: {latency: 5s}}}
- {at: 31s, do: quit}
- {at: 50s, expect: {quit: quit, phone: {macs: [{isArmed: false}]}}}
)"),
                IsEmpty());
}

TEST_F(CloudScenarios, AnAlertThatWasKeptWithoutICloudWaitsOnceItsUploadHasFailed)
{
    EXPECT_THAT(playedText(R"(
mac: {icloud: maya}
steps:
- {at: 70s, do: {icloud: {fail: {code: internalError, times: 1, operation: accountStatus}}}}
- {at: 71s, do: {icloud: {fail: {code: serverRejectedRequest, times: 2, operation: save}}}}
- {at: 72s, do: arm}
- {at: 99s, expect: {icloud: {isAvailable: false}}}
- {at: 100s, do: unplug}
- at: 125s
  expect:
    pendingUploads: 1
    alertRows: [{reason: unplugged, storage: pendingUpload}]
    icloud: {isAvailable: true}
    lastError: Alert saved on this Mac. It will upload when iCloud is available.
)"),
                IsEmpty());
}

TEST_F(CloudScenarios, EachPlayInAFolderBeginsWithAnEmptyCloud)
{
    out = folder.path() / "play";
    const std::string text = "mac: {icloud: maya}\n"
                             "steps:\n- {at: 1s, do: arm}\n- {at: 2s, do: unplug}\n- {at: 5s, expect: {cloudAlerts: 1, "
                             "phone: {alerts: 1, notifications: 1, macs: [{deviceName: MacBook, isArmed: true}]}}}\n";
    EXPECT_THAT(playedText(text), IsEmpty());
    EXPECT_TRUE(std::filesystem::exists(*out / "iCloud" / "maya.sqlite"));
    EXPECT_THAT(playedText(text), IsEmpty());
}

TEST_F(CloudScenarios, DeletionsGoByAge)
{
    EXPECT_THAT(playedText(R"(
mac: {icloud: maya}
steps:
- {at: 1s, do: arm}
- {at: 2s, do: unplug}
- {at: 4s, do: close-lid}
- {at: 6s, do: plug-in}
- {at: 8s, do: unplug}
- {at: 10s, do: {delete-alerts: oldest}}
- {at: 12s, expect: {alertRows: [{reason: unplugged}, {reason: lidClosed}], cloudAlerts: 2}}
- {at: 13s, do: {delete-alerts: newest}}
- {at: 15s, expect: {alertRows: [{reason: lidClosed}], cloudAlerts: 1}}
- {at: 16s, do: {network: down}}
- {at: 17s, do: {delete-alerts: all}}
- {at: 19s, do: crash}
- {at: 20s, expect: {icloud: null, syncError: null, pendingDeletions: 1}}
)"),
                IsEmpty());
}

TEST_F(CloudScenarios, TellWhatHappensBetweenTheMacAndICloudOnceAndInPlainWords)
{
    static_cast<void>(playedText(R"(
mac: {icloud: {account: maya, quota: 9000000}}
steps:
- {at: 1s, do: {icloud: {fail: {code: zoneBusy, times: 2, operation: save, retryAfter: 20}, latency: 200ms}}}
- {at: 2s, do: arm}
- {at: 3s, do: unplug}
- {at: 5s, do: close-lid}
- {at: 90s, do: {icloud: {user: Tom}}}
)"));
    std::vector<std::string> lines;
    std::istringstream story{told.str()};
    for (std::string line; std::getline(story, line);) {
        if (line.find("Cloud") != std::string::npos || line.find("phone") != std::string::npos) {
            lines.push_back(line.substr(12));
        }
    }
    EXPECT_THAT(
        lines, ElementsAre("The next 2 “save” requests to iCloud will fail with “zoneBusy”, which asks to wait "
                           "20 s. iCloud now takes 0.2 s to answer.",
                           "→ The phone can see that the Mac is armed.", "→ iCloud asks the Mac for patience.",
                           "→ The alert can't be uploaded: “iCloud is temporarily unavailable. Try again "
                           "shortly.” It stays on the Mac.",
                           "→ Sentrel says: “Alert saved on this Mac. It will upload when iCloud is available.”",
                           "→ The owner's phone shows: “Unplugged on MacBook”",
                           "→ The alert is safe in iCloud: Power Unplugged.",
                           "→ The owner's phone shows: “Lid closed on MacBook”",
                           "→ The alert is safe in iCloud: Lid Closed.", "The Mac is now signed in to iCloud as Tom."));
}

} // namespace
} // namespace sentrel::simulation
