#include "simulation/stage/Expectation.hpp"
#include "simulation/stage/Language.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ports::CloudAccountStatus;
using testing::ElementsAre;
using testing::StartsWith;

CloudChange cloud(const std::string& text)
{
    return parse("mac: {icloud: " + text + "}\n" + step("do: arm")).mac.iCloud;
}

TEST(CloudLanguage, AnAccountIsTheNameOfAUserOrAStateAndAMacHasOneOnceItSpeaksOfICloud)
{
    const auto mac = [](const std::string& text) {
        return parse("mac: {" + text + "}\n" + step("do: arm")).mac.iCloud;
    };
    EXPECT_EQ(mac("power: ac").account, CloudAccountStatus::noAccount);
    EXPECT_EQ(mac("power: ac").user, std::nullopt);
    EXPECT_EQ(mac("icloud: maya").user, "maya");
    EXPECT_EQ(mac("icloud: {account: \"Unknwon\"}").user, "Unknwon");
    EXPECT_EQ(mac("icloud: {quota: full}").account, CloudAccountStatus::available);
    EXPECT_EQ(mac("icloud: {account: none, network: down}").account, CloudAccountStatus::noAccount);
    EXPECT_EQ(mac("icloud: {account: none, network: down}").isNetworkUp, false);
    EXPECT_EQ(cloud("{account: unknown}").account, CloudAccountStatus::couldNotDetermine);
    EXPECT_EQ(cloud("{account: temporarily-unavailable}").account, CloudAccountStatus::temporarilyUnavailable);
    EXPECT_EQ(cloud("{user: \"other\", account: \"restricted\"}").user, "other");
}

TEST(CloudLanguage, FailuresQuotasLatenciesAndLostAnswersAreReadAsTheyAreMeant)
{
    const auto fault = [](const std::string& text) { return cloud("{fail: " + text + "}").fault.value(); };
    const auto whole = fault("{code: 7, times: 3, retryAfter: 2, operation: save, probability: 0.25}").value();
    EXPECT_EQ(whole.error.code, 7);
    EXPECT_EQ(whole.error.domain, "CKErrorDomain");
    EXPECT_EQ(whole.error.retryAfter, 2.0);
    EXPECT_EQ(whole.times, 3);
    EXPECT_EQ(whole.operation, CloudOperation::save);
    EXPECT_EQ(whole.probability, 0.25);
    EXPECT_EQ(fault("requestRateLimited").value().error.code, 7);
    EXPECT_LT(fault("{code: zoneBusy}").value().times, 0);
    EXPECT_EQ(fault("4711").value().error.code, 4711);
    EXPECT_FALSE(fault("none"));
    EXPECT_EQ(cloud("{quota: full}").quota, std::optional{std::optional<std::uint64_t>{0}});
    EXPECT_EQ(cloud("{quota: 5000000}").quota, std::optional{std::optional<std::uint64_t>{5'000'000}});
    const auto boundless = cloud("{quota: ok}").quota;
    EXPECT_TRUE(boundless && !*boundless);
    EXPECT_EQ(cloud("{latency: 20s, loseAnswers: 1}").latency, 20s);
    EXPECT_EQ(cloud("{latency: 20s, loseAnswers: 2}").lostAnswers.value().times, 2);
    EXPECT_EQ(cloud("{loseAnswers: {operation: modify}}").lostAnswers.value().operation, CloudOperation::modify);
    EXPECT_EQ(told("{network: up}"), "The network is back.");
    EXPECT_EQ(told("{icloud: {fail: {code: zoneBusy, times: 2}, latency: 1.5s}}"),
              "The next 2 requests to iCloud will fail with “zoneBusy”. iCloud now takes 1.5 s to answer.");
}

TEST(CloudLanguage, ThePhoneArmsAndDisarmsAndAlertsAreDeletedByAge)
{
    EXPECT_EQ(told("{phone: {arm: false, sequence: -7, issuedAgo: 121s}}"),
              "The owner's phone tells the Mac to disarm, in a command that is 121 s old.");
    EXPECT_EQ(told("{phone: arm}"), "The owner's phone tells the Mac to arm.");
    EXPECT_EQ(told("{delete-alerts: newest}"), "The owner deletes the newest alert.");
}

TEST(CloudLanguage, ExpectationsAreReadAsTheStateSaysThem)
{
    const Scenario scenario =
        parse(step("expect: {cloudAlerts: 2, alertRows: [{reason: motion, storage: pendingUpload}], phone: {macs: "
                   "[{deviceName: Desk, isArmed: true}]}, icloud: {isAvailable: true, lastSyncError: null}, "
                   "sections: [today, month-2025-05], infoMessage: null, syncError: \"a\\nb\"}"));
    std::vector<std::string> texts;
    for (const Expectation& each : std::get<std::vector<Expectation>>(scenario.steps.front().content)) {
        texts.push_back(each.key + " " + encodeJson(each.expected));
    }
    EXPECT_THAT(texts, ElementsAre("cloudAlerts 2", R"(alertRows [{"reason":"motion","storage":"pendingUpload"}])",
                                   R"(phone {"macs":[{"deviceName":"Desk","isArmed":true}]})",
                                   R"(icloud {"isAvailable":true,"lastSyncError":null})",
                                   R"(sections ["today","month-2025-05"])", "infoMessage null", R"(syncError "a\nb")"));
}

TEST(CloudLanguage, WhatIsNoWordOfItIsToldWithTheNearestOne)
{
    struct Case {
        std::string body;
        std::string message;
    };
    const Case cases[] = {
        {"do: {icloud: {acount: none}}", "unknown key 'acount'; did you mean 'account'? (in 'icloud')"},
        {"do: {icloud: {account: restrcited}}", "unknown account 'restrcited'; did you mean 'restricted'?"},
        {"do: {icloud: {account: temporarilyUnavailable}}", "unknown account 'temporarilyUnavailable'; did you mean"},
        {"do: {icloud: {fail: quotaExeeded}}", "unknown error of iCloud 'quotaExeeded'; did you mean 'quotaExceeded'?"},
        {"do: {icloud: {fail: {times: 3}}}", "a failure of iCloud needs 'code'"},
        {"do: {icloud: {fail: {code: 0}}}", "the code of an error must be a whole number from 1 to 9999"},
        {"do: {icloud: {fail: {code: 7, operation: sav}}}", "unknown kind of request 'sav'; did you mean 'save'?"},
        {"do: {icloud: {fail: {code: 7, probability: 2}}}", "'probability' must be from 0 to 1"},
        {"do: {icloud: {fail: {code: 7, retryAfter: 2s}}}", "'retryAfter' (in seconds) must be a number"},
        {"do: {icloud: {loseAnswers: 0}}", "'loseAnswers' must be a whole number from 1"},
        {"do: {icloud: {quota: ful}}", "unknown quota 'ful'; did you mean 'full'?"},
        {"do: {icloud: {latency: 20}}", "the time '20' has no unit"},
        {"do: {icloud: {}}", "'icloud' needs at least one key"},
        {"do: {network: donw}", "unknown network 'donw'; did you mean 'down'?"},
        {"do: {phone: {sequence: 7}}", "'phone' needs 'arm'"},
        {"do: {phone: {arm: true, sequence: 1.5}}", "'sequence' must be a whole number, not '1.5'"},
        {"do: {phone: disarmed}", "unknown command of the phone 'disarmed'; did you mean 'disarm'?"},
        {"do: {delete-alerts: olddest}", "unknown choice of alerts 'olddest'; did you mean 'oldest'?"},
        {"do: {refresh: all}", "'refresh' takes no value"},
        {"expect: {cloudalerts: 1}", "unknown key 'cloudalerts'; did you mean 'cloudAlerts'?"},
        {"expect: {alertRows: [{storage: icloud}]}", "unknown word 'icloud'; did you mean 'cloud'?"},
        {"expect: {sections: [todya]}", "unknown section 'todya'; did you mean 'today'?"},
    };
    for (const Case& each : cases) {
        EXPECT_THAT(refusal(step(each.body)), StartsWith("talk.yaml:2: " + each.message));
    }
}

} // namespace
} // namespace sentrel::simulation
