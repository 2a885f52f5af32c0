#include "simulation/mac/motion/SimulatedAccelerometer.hpp"
#include "runtime/Latch.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// A machine whose accelerometer has one client that notes when something comes.
struct MotionMachine {
    VirtualClock clock;
    VirtualScheduler product{clock};
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    SimulatedAccelerometer accelerometer{hardware, log, 7};
    SerialQueue queue{product, "test", QualityOfService::standard};
    std::unique_ptr<ports::HidClient> client = accelerometer.createClient();
    std::vector<Duration> received; ///< when each event came

    MotionMachine()
    {
        client->setMatching({{"PrimaryUsagePage", 0xFF00}, {"PrimaryUsage", 3}});
        client->registerEventCallback([this](const ports::HidEvent*) {
            EXPECT_TRUE(queue.isCurrent());
            received.push_back(clock.now().time_since_epoch());
        });
        client->schedule(queue);
    }
};

TEST(SimulatedAccelerometer, PlaysARecordingAtItsOwnTimesAndLosesWhatComesWhileItSleepsOrNobodyListens)
{
    MotionMachine machine;
    machine.clock.advance(3s);
    machine.accelerometer.play(MotionRecording::parse("t_seconds,x_g,y_g,z_g\n0,1,0,0\n0.0385,2,0,0\n0.0385,3,0,0\n"
                                                      "2,0,0,0\n4,0,0,0\n3600.0000001,4,0,0\n",
                                                      "test"));
    machine.clock.advance(1500ms);
    machine.accelerometer.setAsleep(true);
    machine.accelerometer.sample({9, 9, 9});
    machine.clock.advance(1s);
    machine.accelerometer.setAsleep(false);
    machine.clock.advance(1s);
    machine.client->unschedule(machine.queue);
    machine.clock.advance(1s);
    machine.client->schedule(machine.queue);
    machine.clock.advance(7200s);
    EXPECT_THAT(machine.received, ElementsAre(3s, 3s + 38'500us, 3s + 38'500us, 3603s + 100ns));
}

TEST(SimulatedAccelerometer, ClientsComeAndGoOnRealThreadsWhileItMeasures)
{
    ThreadScheduler scheduler;
    EventLog log{scheduler};
    SimulatedAccelerometer accelerometer{scheduler, log, 7};
    accelerometer.setResting(true);
    for (int round = 0; round < 20; ++round) {
        SerialQueue queue{scheduler, "test", QualityOfService::standard};
        std::atomic<int> received = 0;
        Latch enough;
        const auto client = accelerometer.createClient();
        client->registerEventCallback([&](const ports::HidEvent*) {
            if (++received == 3) {
                enough.open();
            }
        });
        client->copyServices()->front()->setProperty("ReportInterval", 1000);
        client->schedule(queue);
        scheduler.blockUntil(enough);
        client->unschedule(queue);
        client->unregisterEventCallback();
        queue.sync([] {});
        const int until = received;
        accelerometer.sample({0, 0, 0});
        queue.sync([] {});
        EXPECT_EQ(received, until);
    }
}

} // namespace
} // namespace sentrel::simulation
