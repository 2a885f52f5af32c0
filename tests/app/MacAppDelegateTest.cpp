#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/Acting.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using simulation::LoginAnswer;
using testing::ElementsAre;

/// A MacBook whose owner sits before it, with the application launched.
struct Desk {
    explicit Desk(const simulation::MacDescription& description = {})
        : session(description, disk.path(), SENTREL_SOURCE_DIR "/resources", 1)
    {
        session.launch();
    }
    Json state(const char* key) { return stateOf(session)[key]; }
    template <class Field> void set(Field AlarmSettings::* field, Field value)
    {
        session.changeSettings([&](AlarmSettings& settings) { settings.*field = value; });
    }
    void soundTheAlarm()
    {
        set(&AlarmSettings::isArmed, true);
        session.mac().power.setAC(false);
        session.clock().advance(2s);
        ASSERT_EQ(state("isAlarmActive"), true);
    }
    simulation::SimulatedLogin& login() { return session.mac().login; }

    TemporaryFolder disk;
    MacSession session;
};

TEST(MacAppDelegate, QuittingAsksForTheLoginWhenTheSettingsSaySoAndAlwaysWhileTheAlarmSounds)
{
    struct Row {
        bool isLoginRequired;
        bool isSounding;
        LoginAnswer answer;
        std::size_t asked;
        bool ends;
    };
    const Row rows[] = {
        {false, false, LoginAnswer::fail, 0, true},        {true, false, LoginAnswer::succeed, 1, true},
        {true, false, LoginAnswer::fail, 1, false},        {true, false, LoginAnswer::cancel, 1, false},
        {true, false, LoginAnswer::unavailable, 0, false}, {false, true, LoginAnswer::succeed, 1, true},
        {false, true, LoginAnswer::fail, 1, false},        {true, true, LoginAnswer::cancel, 1, false},
        {true, true, LoginAnswer::succeed, 1, true},
    };
    for (const Row& row : rows) {
        Desk desk;
        desk.set(&AlarmSettings::requirePasswordForActions, row.isLoginRequired);
        if (row.isSounding) {
            desk.soundTheAlarm();
        }
        desk.login().setAnswer(row.answer);
        desk.session.quit();
        desk.session.clock().advance(2s);
        const std::string name = std::string{row.isLoginRequired ? "required" : "free"} +
                                 (row.isSounding ? ", sounding, " : ", silent, ") +
                                 std::string{simulation::nameOf(row.answer)};
        EXPECT_EQ(desk.login().reasonsAsked().size(), row.asked) << name;
        EXPECT_EQ(desk.state("quit"), row.ends ? "quit" : "running") << name;
        EXPECT_EQ(desk.session.sound().has_value(), row.isSounding && !row.ends) << name;
        EXPECT_EQ(desk.state("settings")["isArmed"], row.isSounding && !row.ends) << name;
    }
}

TEST(MacAppDelegate, WhoeverQuitsTwiceIsAskedOnce)
{
    Desk desk;
    desk.login().setAnswerDelay(std::nullopt);
    desk.session.quit();
    desk.session.quit();
    EXPECT_EQ(desk.state("quit"), "asked");
    EXPECT_THAT(desk.login().reasonsAsked(), ElementsAre("verify your Mac login"));
    desk.login().answerPanel(LoginAnswer::fail);
    desk.session.clock().advance(1s);
    EXPECT_EQ(desk.state("quit"), "running");

    desk.session.quit();
    desk.login().answerPanel(LoginAnswer::succeed);
    desk.session.clock().runReady();
    desk.session.quit();
    desk.session.clock().advance(2s);
    EXPECT_EQ(desk.state("quit"), "quit");
    EXPECT_EQ(desk.session.log().named("quit").size(), 1U);
    desk.session.quit();
    desk.session.launch();
    EXPECT_EQ(desk.state("quit"), "running");
}

TEST(MacAppDelegate, APublicationThatHangsHoldsUpTheEndForTwoSeconds)
{
    Desk desk;
    desk.session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    desk.session.clock().advance(1min);
    desk.session.mac().iCloud.link.setLatency(1h);
    desk.set(&AlarmSettings::requirePasswordForActions, false);
    desk.session.quit();
    desk.session.clock().advance(1900ms);
    EXPECT_EQ(desk.state("quit"), "asked");
    desk.session.clock().advance(100ms);
    EXPECT_EQ(desk.state("quit"), "quit");
}

TEST(MacAppDelegate, AnAlarmThatStartsDuringTheCleanupCallsTheQuitOffUntilTheLogin)
{
    Desk desk;
    desk.session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    desk.session.clock().advance(1min);
    desk.session.mac().iCloud.link.setLatency(1h);
    desk.set(&AlarmSettings::requirePasswordForActions, false);
    desk.set(&AlarmSettings::isArmed, true);
    desk.login().setAnswerDelay(std::nullopt);
    desk.session.quit();
    desk.session.mac().power.setAC(false);
    desk.session.clock().advance(3s);
    EXPECT_EQ(desk.session.mac().speaker.sounding().size(), 1U);
    EXPECT_FALSE(desk.session.mac().application.isAwaitingReply());
    EXPECT_THAT(desk.login().reasonsAsked(), ElementsAre("verify your Mac login"));

    desk.login().answerPanel(LoginAnswer::cancel);
    desk.session.mac().iCloud.link.setLatency(80ms);
    const auto published = desk.session.log().named("presence.published").size();
    desk.session.clock().advance(3min);
    EXPECT_EQ(desk.state("quit"), "running");
    EXPECT_GT(desk.session.log().named("presence.published").size(), published) << "the heart beats on";

    desk.session.quit();
    desk.login().answerPanel(LoginAnswer::succeed);
    desk.session.clock().advance(2s);
    EXPECT_EQ(desk.state("quit"), "quit");
    EXPECT_EQ(desk.session.mac().speaker.sounding().size(), 0U);
}

TEST(MacAppDelegate, StartsAsAnAccessoryThatThenTalksToICloud)
{
    Desk desk;
    desk.session.clock().advance(1s);
    std::vector<std::string> order;
    for (const simulation::Event& event : desk.session.log().events()) {
        const bool isWanted =
            event.name == "launched" || event.name == "activation-policy" || event.name == "cloud.request";
        if (isWanted && (order.empty() || order.back() != event.name)) {
            order.push_back(event.name);
        }
    }
    EXPECT_THAT(order, ElementsAre("launched", "activation-policy", "cloud.request"));
}

TEST(MacAppDelegate, OnAnythingButAMacBookTheControlPanelComesUpAndSaysWhy)
{
    simulation::MacDescription description;
    description.model = "Macmini9,1";
    Desk desk{description};
    const Json window = desk.state("window")["main"];
    EXPECT_EQ(window["visible"], true);
    EXPECT_THAT(window["texts"].get<std::vector<std::string>>(),
                testing::IsSupersetOf({"Computer Not Compatible", "Disarmed",
                                       "Sentrel requires a MacBook to work.\n\niMac, Mac mini, Mac Studio, and Mac Pro "
                                       "cannot use unplugged, lid closed, or motion triggers."}));
    EXPECT_EQ(desk.state("activationPolicy"), "regular");
    EXPECT_EQ(act(desk.session, "{menu: armed}"), "'armed' is disabled or covered");
    desk.set(&AlarmSettings::isArmed, true);
    EXPECT_EQ(desk.state("isArmed"), false);
    EXPECT_EQ(desk.state("icon"), "MenuBarIcon");
}

TEST(MacAppDelegate, AfterSleepThePhoneHearsOfTheMacAtOnce)
{
    Desk desk;
    desk.session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    desk.session.clock().advance(1min);
    desk.session.sleep();
    desk.session.clock().advance(8h);
    const auto before = desk.session.log().named("presence.published").size();
    desk.session.wake();
    desk.session.clock().advance(1s);
    EXPECT_GT(desk.session.log().named("presence.published").size(), before);
}

} // namespace
} // namespace sentrel::simulation
