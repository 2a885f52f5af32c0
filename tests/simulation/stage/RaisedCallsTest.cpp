#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/Acting.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

/// A Mac with iCloud, three displays and a passcode, to which the scenario language's actions happen.
class Desk {
public:
    Desk()
    {
        session_.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
        session_.launch();
        act({"{set-passcode: \"2468\"}"});
        session_.clock().advance(10s);
    }

    void act(std::initializer_list<const char*> actions)
    {
        for (const char* const action : actions) {
            static_cast<void>(simulation::act(session_, action));
        }
    }
    void advance(Duration span) { session_.clock().advance(span); }
    Json state(const char* key) { return stateOf(session_)[key]; }
    std::size_t covers() { return session_.mac().displays.covers().size(); }
    bool isHeard() { return session_.sound().has_value(); }

private:
    static MacDescription mac()
    {
        MacDescription mac;
        mac.displays = 3;
        return mac;
    }

    TemporaryFolder disk_;
    MacSession session_{mac(), disk_.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

TEST(RaisedCalls, TheScreensStayCoveredWhateverMeetsTheNewWindows)
{
    for (const char* const fault : {"{fail: {language: {hangs: 1}}}", "{fail: {displays: {raises: 9}}}"}) {
        Desk desk;
        desk.act({"{set: {lockScreenOnArm: true}}", "arm"});
        desk.advance(1s);
        ASSERT_EQ(desk.covers(), 3U);
        desk.act({fault, "{displays: 2}"});
        desk.advance(1s);
        EXPECT_GE(desk.covers(), 2U) << fault;
    }
}

TEST(RaisedCalls, ALaunchGoesOnAfterEach)
{
    for (const char* const port : {"application", "displays", "keychain", "login-item", "network", "preview-panel",
                                   "push", "status-bar", "user-defaults", "workspace"}) {
        Desk desk;
        desk.act({"crash", (std::string{"{fault: {port: "} + port + ", call: 1, fate: raises}}").c_str(), "relaunch"});
        desk.advance(5s);
        desk.act({"{fault: none}", "arm"});
        desk.advance(2s);
        desk.act({"unplug"});
        desk.advance(1s);
        EXPECT_TRUE(desk.isHeard()) << port;
        EXPECT_EQ(desk.state("icon"), "MenuBarIconArmed") << port;
    }
}

TEST(RaisedCalls, DisarmingSilencesTheAlarmAndIsStoredAfterEach)
{
    for (const char* const port : {"accelerometer", "power-sources", "power-assertions", "workspace"}) {
        Desk desk;
        desk.act({"arm"});
        desk.advance(2s);
        desk.act({"unplug"});
        desk.advance(2s);
        ASSERT_TRUE(desk.isHeard());
        desk.act({(std::string{"{fail: {"} + port + ": {raises: 3}}}").c_str(), "disarm"});
        desk.advance(1s);
        EXPECT_FALSE(desk.isHeard()) << port;
        EXPECT_EQ(desk.state("settings")["isArmed"], false) << port;
    }
}

TEST(RaisedCalls, AnActionIsAskedForAgainAfterALoginThatRaised)
{
    for (const char* const port : {"login", "language"}) {
        Desk desk;
        desk.act({"{set: {requirePasswordForActions: true}}", "arm"});
        desk.advance(2s);
        desk.act({"unplug"});
        desk.advance(2s);
        desk.act({"{login: succeed}", (std::string{"{fault: {port: "} + port + ", call: 1, fate: raises}}").c_str()});
        desk.act({"{menu: stopAlarm}"});
        desk.advance(1s);
        desk.act({"{fault: none}", "{menu: stopAlarm}"});
        desk.advance(1s);
        EXPECT_FALSE(desk.isHeard()) << port;
    }
}

TEST(RaisedCalls, TheIconTellsTheTruthOnceItCanBeDrawn)
{
    Desk desk;
    desk.act({"{fail: {status-bar: {raises: 9}}}", "arm"});
    desk.advance(2s);
    EXPECT_EQ(desk.state("icon"), "MenuBarIcon");
    desk.advance(4s);
    EXPECT_EQ(desk.state("icon"), "MenuBarIconArmed");
    desk.act({"{fail: {status-bar: raises}}", "relaunch"});
    desk.advance(5s);
    EXPECT_NE(desk.state("icon"), "MenuBarIcon");
    desk.act({"{fail: {status-bar: none}}"});
    desk.advance(1s);
    EXPECT_EQ(desk.state("icon"), "MenuBarIcon") << "its item is made late";
}

TEST(RaisedCalls, AnAlertIsMadeWhateverItsPartsMeet)
{
    for (const char* const port : {"host", "random", "wall-clock", "lid"}) {
        Desk desk;
        desk.act({"{network: down}", "arm"});
        desk.advance(5s);
        desk.act({(std::string{"{fail: {"} + port + ": raises}}").c_str(), "unplug"});
        desk.advance(2s);
        EXPECT_EQ(desk.state("alerts"), 1) << port;
    }
}

TEST(RaisedCalls, ACommandOfThePhoneIsObeyedOnceAlsoByTheNextProcess)
{
    Desk desk;
    desk.act({"{fault: {port: user-defaults, operation: setInteger, call: 1, fate: raises}}", "{phone: arm}"});
    desk.advance(10s);
    ASSERT_EQ(desk.state("icon"), "MenuBarIconArmed");
    desk.act({"crash", "relaunch"});
    desk.advance(10s);
    EXPECT_EQ(desk.state("icon"), "MenuBarIcon");
}

TEST(RaisedCalls, APassThatRaisesLeavesARetry)
{
    Desk desk;
    desk.act({"{network: down}", "arm", "unplug"});
    desk.advance(1min);
    desk.act({"stop-alarm", "crash", "{fault: {port: files, operation: list, call: 1, fate: raises}}", "relaunch"});
    desk.advance(10s);
    EXPECT_EQ(desk.state("alerts"), 1);
    desk.act({"{network: up}"});
    desk.advance(2min);
    EXPECT_EQ(desk.state("cloudAlerts"), 1);
    EXPECT_EQ(desk.state("alerts"), 0);
}

} // namespace
} // namespace sentrel::simulation
