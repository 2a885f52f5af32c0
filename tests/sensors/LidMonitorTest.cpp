#include "sensors/LidMonitor.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedWorkspace.hpp"
#include "simulation/mac/power/SimulatedLid.hpp"

#include <gtest/gtest.h>

#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

struct LiddedMac {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::SimulatedLid lid{log};
    simulation::SimulatedWorkspace workspace{scheduler, log};
    LidMonitor monitor{MainActor{scheduler}, lid, workspace};
    int closed = 0;

    LiddedMac()
    {
        monitor.onLidClosed = [this] { ++closed; };
    }

    void set(char state)
    {
        if (state == 'n') {
            lid.setAbsent();
        } else {
            lid.setNumber(state == 'c' ? 1 : state == 'C' ? 0xFFFFFFFF : 0);
        }
    }
};

TEST(LidMonitor, FiresOnceForEachClosingWhicheverWayItLearnsOfIt)
{
    struct Case {
        std::string states; ///< o open, c and C closed, n not to be read; the first at the start
        int closed;
    };
    const std::vector<Case> cases{{"oc", 1},  {"oC", 1},  {"occ", 1}, {"ococ", 2}, {"c", 0},  {"ccc", 0},
                                  {"coc", 1}, {"ooo", 0}, {"nnn", 0}, {"nc", 1},   {"cnc", 1}};
    for (const bool screensSleep : {true, false}) {
        for (const Case& example : cases) {
            LiddedMac mac;
            mac.set(example.states.front());
            mac.monitor.start();
            for (const char state : example.states.substr(1)) {
                mac.set(state);
                if (screensSleep) {
                    mac.workspace.post("NSWorkspaceScreensDidSleepNotification");
                    mac.clock.runReady();
                }
                const int soon = mac.closed;
                mac.clock.advance(2s);
                EXPECT_TRUE(!screensSleep || mac.closed == soon) << "the timer found what the notification had missed";
            }
            EXPECT_EQ(mac.closed, example.closed) << example.states << (screensSleep ? "" : " by the timer alone");
        }
    }
}

TEST(LidMonitor, LooksEveryTwoSecondsUntilItIsStopped)
{
    LiddedMac mac;
    mac.monitor.start();
    mac.monitor.start(); // leaves one timer
    mac.lid.close();
    mac.clock.advance(1999ms);
    EXPECT_EQ(mac.closed, 0);
    mac.clock.advance(1ms);
    EXPECT_EQ(mac.closed, 1);
    const auto turns = mac.clock.turns();
    mac.clock.advance(60s);
    EXPECT_EQ(mac.clock.turns() - turns, 60U) << "30 ticks a minute, each with one task, and nothing else";

    mac.lid.open();
    mac.clock.advance(2s);
    mac.lid.close();
    mac.workspace.post("NSWorkspaceScreensDidSleepNotification");
    mac.monitor.stop();
    mac.clock.advance(1min);
    EXPECT_EQ(mac.closed, 1);
}

TEST(LidMonitorDeathTest, EndsTheProgramOnANumberThatNoLidHas)
{
    for (const std::int64_t number : {std::int64_t{-1}, std::int64_t{1} << 32}) {
        LiddedMac mac;
        mac.lid.setNumber(number);
        EXPECT_DEATH((void)mac.monitor.isLidClosed(), "clamshell state");
    }
}

} // namespace
} // namespace sentrel
