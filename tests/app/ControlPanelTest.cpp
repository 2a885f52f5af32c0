#include "app/ControlsMac.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::test {
namespace {

using simulation::LoginAnswer;
using testing::ElementsAre;
using testing::IsSupersetOf;

std::string lineOf(ControlsMac& mac, std::string_view id)
{
    const auto body = mac.panel.body();
    const auto node = ui::find(body, id);
    return node ? ui::visibleText(*node->view) : "";
}

std::string valueTextOf(ControlsMac& mac, std::string_view id)
{
    const auto body = mac.panel.body();
    return ui::elementOf<ui::Slider>(*ui::find(body, id)->view)->valueText;
}

TEST(ControlPanel, ReadsFromTopToBottom)
{
    ControlsMac mac;
    EXPECT_THAT(ui::visibleTexts(mac.panel.body()),
                ElementsAre("Sentrel", "Mac Alarm Guard", "Status", "Disarmed", //
                            "Triggers", "When unplugged", "When lid closed", "On motion", "Motion sensitivity",
                            "On failed unlock", "Wrong attempts", "3", //
                            "Options", "Send notification", "Take photo", "Alarm sound", "Alarm volume", "Security",
                            "Set Unlock Passcode", "Used to dismiss the lock screen when the Mac is armed.",
                            "No unlock passcode set",
                            "The lock screen won't activate until you set an unlock passcode.", "Set Passcode",
                            "Lock screen when arming", "Delay", "Immediately", "Require Mac login for actions", //
                            "iCloud", "Sign in to iCloud"));
    EXPECT_EQ(mac.sliderAt("alarmVolume"), 0.8);
}

TEST(ControlPanel, EveryControlWritesItsField)
{
    ControlsMac mac;
    for (const auto& [name, member] : alarmSettingsFields) {
        if (name == "isArmed") {
            continue; // in the menu
        }
        if (const auto* const flag = std::get_if<bool AlarmSettings::*>(&member)) {
            AlarmSettings expected = mac.settings();
            expected.** flag = !(expected.**flag);
            EXPECT_EQ(mac.press(mac.panel, name), ui::Interaction::done) << name;
            EXPECT_EQ(mac.settings(), expected) << name;
            mac.press(mac.panel, name);
        }
    }
    mac.set(&AlarmSettings::triggerOnFailedUnlock, true);
    mac.set(&AlarmSettings::lockScreenOnArm, true);
    const std::tuple<const char*, double AlarmSettings::*, double, double, double> sliders[] = {
        {"motionSensitivity", &AlarmSettings::motionSensitivity, 0.1, 1.0, 0.55},
        {"failedUnlockAttemptLimit", &AlarmSettings::failedUnlockAttemptLimit, 1.0, 10.0, 4.0},
        {"alarmVolume", &AlarmSettings::alarmVolume, 0.1, 1.0, 0.25},
        {"lockScreenSleepDelay", &AlarmSettings::lockScreenSleepDelay, 0.0, 30.0, 12.5},
    };
    for (const auto& [name, field, lower, upper, between] : sliders) {
        AlarmSettings expected = mac.settings();
        for (const auto& [wanted, written] : {std::pair{-1.0, lower}, {99.0, upper}, {between, between}}) {
            mac.slide(mac.panel, name, wanted);
            expected.*field = written;
            EXPECT_EQ(mac.settings(), expected) << name << " to " << wanted;
        }
    }
    EXPECT_EQ(mac.loginsAsked(), 0U) << "nothing is protected while the Mac isn't armed";
}

TEST(ControlPanel, WhatMeansNothingCanNotBeChanged)
{
    const std::tuple<const char*, bool AlarmSettings::*> cases[] = {
        {"Motion sensitivity", &AlarmSettings::triggerOnMotion},
        {"Wrong attempts", &AlarmSettings::triggerOnFailedUnlock},
        {"Alarm volume", &AlarmSettings::alarmSound},
        {"Delay", &AlarmSettings::lockScreenOnArm},
    };
    ControlsMac mac;
    for (const auto& [slider, field] : cases) {
        for (const bool isOn : {false, true}) {
            mac.set(field, isOn);
            EXPECT_EQ(mac.isEnabled(mac.panel, slider), isOn) << slider;
        }
    }
}

TEST(ControlPanel, ShowsNumbersAsWholeOnesWhateverIsStored)
{
    const std::tuple<double, const char*, const char*> cases[] = {
        {0.4, "0", "Immediately"}, {1.0, "1", "1s"},   {12.0, "12", "12s"},
        {29.9, "29", "29s"},       {3.999, "3", "3s"}, {1e300, "9000000000000000000", "9000000000000000000s"},
    };
    ControlsMac mac;
    for (const auto& [stored, attempts, delay] : cases) {
        mac.set(&AlarmSettings::failedUnlockAttemptLimit, stored);
        mac.set(&AlarmSettings::lockScreenSleepDelay, stored);
        EXPECT_EQ(valueTextOf(mac, "failedUnlockAttemptLimit"), attempts);
        EXPECT_EQ(valueTextOf(mac, "lockScreenSleepDelay"), delay);
        EXPECT_LE(mac.sliderAt("failedUnlockAttemptLimit"), 10.0);
    }
}

TEST(ControlPanel, LooseningAnArmedMacNeedsTheLoginAndTighteningNone)
{
    struct Case {
        const char* control;
        std::optional<double> value; ///< none: pressed
        bool asks;
    };
    const Case cases[] = {
        {"triggerOnUnplugged", {}, true},
        {"triggerOnLidClosed", {}, true},
        {"triggerOnMotion", {}, true},
        {"triggerOnFailedUnlock", {}, true},
        {"sendNotification", {}, true},
        {"capturePhoto", {}, true},
        {"alarmSound", {}, true},
        {"lockScreenOnArm", {}, true},
        {"requirePasswordForActions", {}, true},
        {"motionSensitivity", 0.3, true},
        {"motionSensitivity", 0.4, false},
        {"alarmVolume", 0.5, true},
        {"alarmVolume", 0.9, false},
        {"failedUnlockAttemptLimit", 2.0, true},
        {"failedUnlockAttemptLimit", 5.0, true},
        {"lockScreenSleepDelay", 20.0, true},
        {"lockScreenSleepDelay", 5.0, false},
    };
    ControlsMac mac;
    AlarmSettings protectedMac;
    protectedMac.triggerOnFailedUnlock = protectedMac.lockScreenOnArm = true;
    protectedMac.lockScreenSleepDelay = 10.0;
    protectedMac.isArmed = true;
    for (const Case& each : cases) {
        const auto change = [&] {
            each.value ? mac.slide(mac.panel, each.control, *each.value) : mac.press(mac.panel, each.control);
        };
        mac.session().changeSettings([&](AlarmSettings& settings) { settings = protectedMac; });
        const auto asked = mac.loginsAsked();
        mac.login(LoginAnswer::cancel);
        change();
        EXPECT_EQ(mac.settings() == protectedMac, each.asks) << each.control;
        EXPECT_EQ(mac.loginsAsked() - asked, each.asks ? 1U : 0U) << each.control;
        mac.login(LoginAnswer::succeed);
        change();
        EXPECT_NE(mac.settings(), protectedMac) << each.control;
        if (!each.value) {
            mac.login(LoginAnswer::cancel);
            mac.press(mac.panel, each.control);
            EXPECT_EQ(mac.settings(), protectedMac) << each.control << " is turned on again freely";
        }
    }
    mac.session().changeSettings([&](AlarmSettings& settings) {
        settings = protectedMac;
        settings.requirePasswordForActions = false;
    });
    const auto asked = mac.loginsAsked();
    mac.press(mac.panel, "alarmSound");
    EXPECT_FALSE(mac.settings().alarmSound);
    EXPECT_EQ(mac.loginsAsked(), asked);
}

TEST(ControlPanel, ADragAsksOnceAndItsLastValueCounts)
{
    struct Case {
        std::vector<double> drag;
        LoginAnswer answer;
        double whileAsking;
        double afterwards;
    };
    const Case cases[] = {
        {{0.7, 0.5, 0.3}, LoginAnswer::succeed, 0.8, 0.3}, {{0.7, 0.5, 0.3}, LoginAnswer::fail, 0.8, 0.8},
        {{0.5, 0.9}, LoginAnswer::succeed, 0.9, 0.9},      // louder in the end, which needs no login
        {{0.5, 0.9, 0.6}, LoginAnswer::succeed, 0.9, 0.6}, //
        {{0.5, 0.8}, LoginAnswer::succeed, 0.8, 0.8},      // back where it was
    };
    for (const Case& each : cases) {
        ControlsMac mac;
        mac.arm();
        mac.mac().login.setAnswerDelay(std::nullopt);
        int redrawn = 0;
        mac.panel.onChange = [&] { ++redrawn; };
        for (const double value : each.drag) {
            mac.slide(mac.panel, "alarmVolume", value);
        }
        EXPECT_GE(redrawn, 1) << "the slider goes back";
        EXPECT_EQ(mac.loginsAsked(), 1U);
        EXPECT_EQ(mac.sliderAt("alarmVolume"), each.whileAsking);
        mac.mac().login.answerPanel(each.answer);
        mac.session().clock().runReady();
        EXPECT_EQ(mac.settings().alarmVolume, each.afterwards);
    }
}

TEST(ControlPanel, TellsTheStateTheLastTriggerAndWhatIsWrong)
{
    ControlsMac mac;
    mac.arm();
    EXPECT_EQ(lineOf(mac, "state"), "Armed");
    mac.trigger();
    EXPECT_EQ(lineOf(mac, "lastTrigger"), "Power Unplugged");
    mac.coordinator().statusMessage = "busy";
    EXPECT_EQ(lineOf(mac, "state"), "busy");
    mac.coordinator().lastError = "no speaker";
    mac.coordinator().cameraWarning = "no camera";
    mac.coordinator().motionWarning = "no motion";
    EXPECT_THAT(ui::visibleTexts(mac.panel.body()),
                IsSupersetOf({"no speaker", "no camera", "no motion", "Stop Alarm"}));
}

TEST(ControlPanel, SaysWhereICloudStands)
{
    const std::tuple<bool, bool, const char*> cases[] = {{false, false, "Sign in to iCloud"},
                                                         {false, true, "Sign in to iCloud"},
                                                         {true, false, "No connection"},
                                                         {true, true, "iCloud connected"}};
    ControlsMac mac;
    for (const auto& [isAvailable, isReachable, line] : cases) {
        mac.cloud.isAvailable = isAvailable;
        mac.cloud.isReachable = isReachable;
        EXPECT_EQ(lineOf(mac, "iCloud/line"), line);
    }
    int redrawn = 0;
    mac.panel.onChange = [&] { ++redrawn; };
    mac.app().presence().syncError = "no answer";
    EXPECT_THAT(std::tuple(lineOf(mac, "lastSyncError"), lineOf(mac, "syncError"), redrawn),
                testing::FieldsAre("", "no answer", 1));
    mac.cloud.lastSyncError = "storage full";
    EXPECT_THAT(std::tuple(lineOf(mac, "lastSyncError"), lineOf(mac, "syncError"), redrawn),
                testing::FieldsAre("storage full", "no answer", 2));
    mac.app().presence().syncError = "storage full";
    EXPECT_THAT(std::tuple(lineOf(mac, "lastSyncError"), lineOf(mac, "syncError")),
                testing::FieldsAre("storage full", ""))
        << "told once";
    mac.app().presence().syncError = "Sign in to iCloud, please.";
    EXPECT_EQ(lineOf(mac, "syncError"), "Sign in to iCloud, please.");
    mac.signOut();
    EXPECT_EQ(lineOf(mac, "syncError"), "") << "the line says it already";
}

TEST(ControlPanel, LooksForTheAccelerometerEachTimeItAppears)
{
    constexpr const char* missing = "Motion detection is unavailable on this Mac.";
    ControlsMac mac;
    mac.set(&AlarmSettings::triggerOnMotion, true);
    const auto lookWith = [&](bool isPresent) {
        mac.mac().accelerometer.setPresent(isPresent);
        mac.panel.appeared();
        return std::tuple(lineOf(mac, "accelerometer"), lineOf(mac, "motionWarning"));
    };
    EXPECT_THAT(lookWith(true), testing::FieldsAre("", ""));
    EXPECT_THAT(lookWith(false), testing::FieldsAre(missing, ""));
    EXPECT_THAT(lookWith(true), testing::FieldsAre("", ""));
    mac.arm();
    EXPECT_THAT(lookWith(false), testing::FieldsAre("", missing));
    EXPECT_THAT(lookWith(true), testing::FieldsAre("", missing)) << "nobody listens to it yet";
}

TEST(PasscodeSetup, ChecksLengthBeforeAgreementInCharactersThatAPersonSees)
{
    constexpr const char* tooShort = "Passcode must be at least 4 characters.";
    constexpr const char* different = "Passcodes don't match.";
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"", "", tooShort},
        {"abc", "abc", tooShort},
        {"abc", "abd", tooShort},
        {"äöü", "äöü", tooShort},                                           // six bytes
        {"e\u0301e\u0301e\u0301", "e\u0301e\u0301e\u0301", tooShort},       // six code points
        {"👨\u200D👩\u200D👧👍🏽🇩🇪", "👨\u200D👩\u200D👧👍🏽🇩🇪", tooShort}, // three pictures
        {"abcd", "abce", different},
        {"abcd", "", different},
        {"caf\u00E9", "cafe\u0301", different}, // bytes are what is compared
    };
    ControlsMac mac;
    mac.press(mac.panel, "Set Passcode");
    for (const auto& [passcode, confirmation, error] : cases) {
        for (const char* const field : {"fields/passcode", "confirmation"}) {
            mac.session().onMain([&](SentrelApp&) { ui::clearText(mac.panel.body(), field); });
        }
        mac.type(mac.panel, "fields/passcode", passcode);
        mac.type(mac.panel, "confirmation", confirmation);
        mac.press(mac.panel, "save");
        EXPECT_EQ(lineOf(mac, "error"), error) << passcode;
    }
    EXPECT_FALSE(mac.app().passcodes().hasPasscode());
}

/// Opens the sheet and types the passcode into both fields.
void enterPasscode(ControlsMac& mac, const char* passcode)
{
    mac.press(mac.panel, "setPasscode");
    mac.type(mac.panel, "fields/passcode", passcode);
    mac.type(mac.panel, "confirmation", passcode);
}

TEST(PasscodeSetup, SavesOffTheMainThreadAndClosesTheSheet)
{
    ControlsMac mac;
    enterPasscode(mac, "👍🏽äöü");
    mac.session().onMain([&](SentrelApp&) {
        ui::press(mac.panel.body(), "save");
        EXPECT_FALSE(mac.isEnabled(mac.panel, "save"));
        // Somebody impatient.
        constexpr const char* field = "form/security/passcode/sheet/passcodeSetup/fields/confirmation";
        EXPECT_EQ(ui::pressKey(mac.panel.body(), ui::Key::returnKey, field), ui::Interaction::done);
    });
    EXPECT_FALSE(mac.shows(mac.panel, "passcodeSetup"));
    EXPECT_TRUE(mac.app().passcodes().verifyStoredPasscode(bytesOf("👍🏽äöü")));
    EXPECT_THAT(ui::visibleTexts(mac.panel.body()), IsSupersetOf({"Unlock passcode set", "Change", "Remove"}));
    EXPECT_FALSE(mac.shows(mac.panel, "The lock screen won't activate until you set an unlock passcode."));
}

TEST(PasscodeSetup, AFailedOrCancelledSaveKeepsThePasscode)
{
    ControlsMac mac;
    ASSERT_TRUE(simulation::storePasscode(mac.app().passcodes(), "first"));
    enterPasscode(mac, "second");
    simulation::FaultSwitches& keychain = mac.mac().keychain.faults();
    for (auto [faults, name] : {std::pair{&keychain, "update"}, std::pair{&keychain, "raises"},
                                std::pair{&mac.mac().cryptography.faults(), "raises"}}) {
        faults->set(name);
        mac.press(mac.panel, "save");
        EXPECT_EQ(lineOf(mac, "error"), "Couldn't save the passcode. Please try again.");
        EXPECT_TRUE(mac.isEnabled(mac.panel, "save")) << name;
        faults->clear();
    }
    mac.session().onMain([&](SentrelApp&) {
        ui::press(mac.panel.body(), "save");
        ui::press(mac.panel.body(), "passcodeSetup/buttons/cancel");
    });
    EXPECT_FALSE(mac.shows(mac.panel, "passcodeSetup"));
    EXPECT_TRUE(mac.app().passcodes().verifyStoredPasscode(bytesOf("first")));
}

TEST(PasscodeSetup, APasscodeIsCheckedAgainAfterTheLoginThatAnArmedMacAsksFor)
{
    ControlsMac mac;
    enterPasscode(mac, "first"); // before the Mac is armed
    mac.arm();
    mac.login(LoginAnswer::fail);
    mac.press(mac.panel, "save");
    EXPECT_EQ(mac.loginsAsked(), 1U);
    EXPECT_FALSE(mac.app().passcodes().hasPasscode());
    mac.login(LoginAnswer::succeed);
    mac.mac().login.setAnswerDelay(std::nullopt);
    mac.press(mac.panel, "save");
    mac.type(mac.panel, "confirmation", "!");
    mac.mac().login.answerPanel(LoginAnswer::succeed);
    mac.session().clock().runReady();
    EXPECT_EQ(lineOf(mac, "error"), "Passcodes don't match.");
}

} // namespace
} // namespace sentrel::test
