#include "app/ControlsMac.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::test {
namespace {

using simulation::LoginAnswer;
using testing::Each;
using testing::ElementsAre;

TEST(MenuBar, ReadsFromTopToBottomAndTellsWhenItIsArmed)
{
    ControlsMac mac;
    EXPECT_EQ(mac.label.image(), "MenuBarIcon");
    EXPECT_THAT(ui::visibleTexts(mac.menu.body()),
                ElementsAre("Sentrel", "Armed", "Open at login", "Alert List", "Settings", "Quit"));

    int redrawn = 0;
    mac.label.onChange = [&] { ++redrawn; };
    mac.press(mac.menu, "armed");
    EXPECT_TRUE(mac.coordinator().isArmed);
    EXPECT_EQ(redrawn, 1);
    EXPECT_EQ(mac.label.image(), "MenuBarIconArmed");
    EXPECT_EQ(mac.label.accessibilityLabel(), "Sentrel: Armed");
    EXPECT_THAT(ui::visibleTexts(mac.menu.body()),
                ElementsAre("Sentrel", "Armed", "Armed", "Open at login", "Alert List", "Settings", "Quit"));
    EXPECT_EQ(mac.loginsAsked(), 0U) << "arming never asks";
}

TEST(MenuBar, DisarmingNeedsTheLoginUnlessTheSettingsDoWithout)
{
    ControlsMac mac;
    mac.arm();
    int redrawn = 0;
    mac.menu.onChange = [&] { ++redrawn; };
    for (const LoginAnswer answer : {LoginAnswer::fail, LoginAnswer::cancel, LoginAnswer::unavailable}) {
        mac.login(answer);
        mac.press(mac.menu, "armed");
        EXPECT_TRUE(mac.settings().isArmed && mac.coordinator().isArmed);
    }
    EXPECT_EQ(redrawn, 3) << "the toggle goes back to what is stored";
    mac.login(LoginAnswer::succeed);
    mac.press(mac.menu, "armed");
    EXPECT_FALSE(mac.settings().isArmed || mac.coordinator().isArmed);
    EXPECT_THAT(mac.mac().login.reasonsAsked(), Each("verify your Mac login"));
    EXPECT_EQ(mac.loginsAsked(), 3U) << "two panels and an alert before, one now";

    mac.arm();
    mac.set(&AlarmSettings::requirePasswordForActions, false);
    mac.press(mac.menu, "armed");
    EXPECT_FALSE(mac.coordinator().isArmed);
    EXPECT_EQ(mac.loginsAsked(), 3U);
}

TEST(MenuBar, AQuestionThatIsOpenIsNotAskedAgain)
{
    ControlsMac mac;
    mac.arm();
    mac.mac().login.setAnswerDelay(std::nullopt);
    mac.press(mac.menu, "armed");
    mac.press(mac.menu, "armed");
    EXPECT_EQ(mac.loginsAsked(), 1U);
    mac.press(mac.menu, "settings");
    EXPECT_TRUE(mac.mac().login.answerPanel(LoginAnswer::fail));
    mac.session().clock().runReady();
    EXPECT_EQ(mac.loginsAsked(), 2U) << "another action has its own question, in its turn";
    EXPECT_TRUE(mac.mac().login.answerPanel(LoginAnswer::succeed));
    mac.session().clock().runReady();
    EXPECT_THAT(mac.done, ElementsAre("dismiss", "main"));
    EXPECT_TRUE(mac.settings().isArmed);
    mac.press(mac.menu, "armed");
    EXPECT_EQ(mac.loginsAsked(), 3U) << "the first was answered";
}

TEST(MenuBar, OpensWindowsAfterClosingItselfAndTheLogin)
{
    struct Case {
        const char* button;
        bool isRequired;
        LoginAnswer answer;
        std::vector<std::string> done;
        std::size_t logins;
    };
    const Case cases[] = {
        {"Alert List", true, LoginAnswer::succeed, {"dismiss", "alerts"}, 1},
        {"Alert List", true, LoginAnswer::cancel, {"dismiss"}, 1},
        {"Alert List", false, LoginAnswer::fail, {"dismiss", "alerts"}, 0},
        {"Settings", true, LoginAnswer::succeed, {"dismiss", "main"}, 1},
        {"Settings", true, LoginAnswer::fail, {"dismiss"}, 1},
        {"Settings", false, LoginAnswer::fail, {"dismiss", "main"}, 0},
        {"Quit", true, LoginAnswer::fail, {"quit"}, 0}, // whether it may is the application delegate's question
    };
    for (const Case& each : cases) {
        ControlsMac mac;
        mac.set(&AlarmSettings::requirePasswordForActions, each.isRequired);
        mac.login(each.answer);
        mac.press(mac.menu, each.button);
        EXPECT_EQ(mac.done, each.done) << each.button;
        EXPECT_EQ(mac.loginsAsked(), each.logins) << each.button;
    }
}

TEST(MenuBar, TheCoordinatorFollowsTheSettingsFromTheSceneOnWhoeverChangesThem)
{
    ControlsMac mac;
    mac.menu.appeared();
    mac.app().settings().set(&AlarmSettings::isArmed, true);
    EXPECT_TRUE(mac.coordinator().isArmed);
    mac.hooks.openControlPanel();
    mac.hooks.openAlerts();
    EXPECT_THAT(mac.done, ElementsAre("main", "alerts")) << "for those who open windows without a menu";
}

TEST(MenuBar, OpensAtLoginAsTheSystemHasIt)
{
    constexpr const char* notice = "Couldn't change whether Sentrel opens at login.";
    ControlsMac mac;
    const auto isOn = [&] {
        const auto body = mac.menu.body();
        return ui::elementOf<ui::Toggle>(*ui::find(body, "openAtLogin")->view)->isOn.value;
    };
    mac.press(mac.menu, "openAtLogin");
    EXPECT_TRUE(isOn() && mac.loginItem.status() == 1);
    EXPECT_EQ(mac.loginsAsked(), 0U) << "turning it on needs no login";

    mac.login(LoginAnswer::fail);
    mac.press(mac.menu, "openAtLogin");
    EXPECT_TRUE(isOn() && mac.loginItem.status() == 1);
    mac.login(LoginAnswer::succeed);
    mac.loginItem.faults().set("unregister", 1);
    mac.press(mac.menu, "openAtLogin");
    EXPECT_TRUE(isOn() && mac.shows(mac.menu, notice));
    mac.press(mac.menu, "openAtLogin");
    EXPECT_FALSE(isOn() || mac.shows(mac.menu, notice)) << "the notice goes when it works";
    EXPECT_EQ(mac.loginsAsked(), 3U);

    mac.loginItem.faults().set("register", 1);
    mac.press(mac.menu, "openAtLogin");
    EXPECT_FALSE(isOn());
    EXPECT_TRUE(mac.shows(mac.menu, notice));

    static_cast<void>(mac.loginItem.setStatus(1)); // in the system's settings
    mac.menu.opened();
    EXPECT_TRUE(isOn());
    EXPECT_FALSE(mac.shows(mac.menu, notice));

    mac.press(mac.menu, "openAtLogin");
    mac.loginItem.faults().set("approval");
    mac.press(mac.menu, "openAtLogin");
    constexpr const char* hint = "Allow Sentrel under Login Items in System Settings.";
    EXPECT_TRUE(isOn() && mac.shows(mac.menu, hint));
    EXPECT_FALSE(mac.shows(mac.menu, notice));
    mac.press(mac.menu, "openAtLogin");
    EXPECT_FALSE(isOn() || mac.shows(mac.menu, hint));
    EXPECT_EQ(mac.loginItem.status(), 0) << "what waits for approval can be withdrawn";
}

TEST(MenuBar, OpensWithWhatIsSoNow)
{
    ControlsMac mac;
    mac.session().onMain([&](SentrelApp&) {
        static_cast<void>(mac.mac().loginItem.setStatus(1)); // in the system's settings
        EXPECT_TRUE(mac.mac().statusBar.openMenu());
        const ui::View menu = mac.mac().statusBar.item()->menu;
        EXPECT_TRUE(ui::elementOf<ui::Toggle>(*ui::find(menu, "openAtLogin")->view)->isOn.value);
    });
}

} // namespace
} // namespace sentrel::test
