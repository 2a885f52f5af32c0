#include "sensors/PowerMonitor.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/power/SimulatedPower.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using simulation::PowerSource;

struct PluggedMac {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::SimulatedPower power{scheduler, log};
    std::unique_ptr<PowerMonitor> monitor = std::make_unique<PowerMonitor>(MainActor{scheduler}, power);
    int unplugged = 0;

    PluggedMac()
    {
        monitor->onUnplugged = [this] { ++unplugged; };
    }

    /// Sets the power as one letter says, and lets notifications arrive.
    void set(char state)
    {
        switch (state) {
        case 'A':
            power.setAC(true);
            break;
        case 'B':
            power.setAC(false);
            break;
        case '?':
            power.setUnknown();
            break;
        case 'k': // descriptions without the key that counts, or none at all
            power.setSources({PowerSource{PowerSource::Description{{"Name", "Battery"}}}, PowerSource{}});
            break;
        case 'f': // the adapter first
            power.setSources({PowerSource::reporting("UPS", "AC Power"),
                              PowerSource::reporting("InternalBattery-0", "Battery Power")});
            break;
        case 'l': // the adapter last, behind a source that says nothing
            power.setSources({PowerSource::reporting("InternalBattery-0", "Battery Power"), PowerSource{},
                              PowerSource::reporting("UPS", "AC Power")});
            break;
        default:
            ADD_FAILURE() << "no such state: " << state;
        }
        clock.runReady();
    }
};

TEST(PowerMonitor, FiresOnceForEachWayFromACToBatteryWhicheverWayItLearnsOfIt)
{
    struct Case {
        std::string states; ///< the first at the start, the others one after another
        int unplugged;
    };
    const std::vector<Case> cases{
        {"AB", 1},   {"ABB", 1},   {"ABAB", 2}, {"B", 0},   {"BBB", 0},  {"BAB", 1}, {"?B", 1},    {"A?B", 1},
        {"AB?B", 1}, {"AB?AB", 2}, {"kB", 1},   {"kkk", 0}, {"A?k?", 0}, {"fB", 1},  {"AfBlB", 2}, {"Alf", 0},
    };
    for (const bool isNotified : {true, false}) {
        for (const Case& example : cases) {
            PluggedMac mac;
            mac.power.faults().set(isNotified ? "snapshot" : "register", isNotified ? 0 : -1);
            mac.set(example.states.front());
            mac.monitor->start();
            for (const char state : example.states.substr(1)) {
                mac.set(state);
                const int soon = mac.unplugged;
                mac.clock.advance(5s);
                EXPECT_TRUE(!isNotified || mac.unplugged == soon) << "the timer found what the notification had missed";
            }
            EXPECT_EQ(mac.unplugged, example.unplugged) << example.states << (isNotified ? "" : " by the timer alone");
        }
    }
}

TEST(PowerMonitor, LooksEveryFiveSecondsAndNotBefore)
{
    PluggedMac mac;
    mac.power.faults().set("notification");
    mac.monitor->start();
    mac.monitor->start(); // leaves one timer
    mac.set('B');
    mac.clock.advance(4999ms);
    EXPECT_EQ(mac.unplugged, 0);
    mac.clock.advance(1ms);
    EXPECT_EQ(mac.unplugged, 1);
    const auto turns = mac.clock.turns();
    mac.clock.advance(60s);
    EXPECT_EQ(mac.clock.turns() - turns, 24U) << "12 ticks a minute, each with one task, and nothing else";
}

TEST(PowerMonitor, WatchesByTheTimerWhenItsFirstCallsRaise)
{
    for (const int raising : {1, 2}) { // the first reading; the notification, too
        PluggedMac mac;
        mac.power.faults().set("raises", raising);
        try {
            mac.monitor->start();
        } catch (const simulation::Raised&) {
            EXPECT_EQ(raising, 2);
        }
        mac.set('B');
        mac.clock.advance(5s);
        EXPECT_EQ(mac.unplugged, 1) << raising;
    }
}

TEST(PowerMonitor, IsSilentWithoutAnySnapshotAndOnceItIsStoppedOrGone)
{
    PluggedMac blind;
    blind.power.faults().set("snapshot");
    blind.monitor->start();
    blind.set('B');
    blind.clock.advance(1min);
    EXPECT_EQ(blind.unplugged, 0);

    PluggedMac stopped;
    stopped.monitor->start();
    stopped.power.setAC(false); // the notification is on its way
    stopped.monitor->stop();
    stopped.clock.advance(1min);
    EXPECT_EQ(stopped.unplugged, 0);

    PluggedMac gone;
    gone.monitor->start();
    gone.clock.advance(4s);
    gone.power.setAC(false);
    gone.monitor.reset();
    gone.clock.advance(1min);
    EXPECT_EQ(gone.unplugged, 0);
}

TEST(PowerMonitor, OutlivesAnOwnerThatDropsItInTheCallback)
{
    PluggedMac mac;
    mac.monitor->onUnplugged = [&mac] {
        mac.monitor.reset();
        ++mac.unplugged;
    };
    mac.monitor->start();
    mac.set('B');
    EXPECT_EQ(mac.unplugged, 1);
}

} // namespace
} // namespace sentrel
