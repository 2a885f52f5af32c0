#include "simulation/mac/motion/SimulatedAccelerometer.hpp"
#include "runtime/Latch.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <optional>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::SizeIs;

struct Received {
    Duration at;
    std::optional<std::uint32_t> type;
    Acceleration values;
};

/// A machine whose accelerometer has one client that writes down what it gets.
struct MotionMachine {
    VirtualClock clock;
    VirtualScheduler product{clock};
    VirtualScheduler hardware{clock};
    EventLog log{hardware};
    SimulatedAccelerometer accelerometer{hardware, log, 7};
    SerialQueue queue{product, "test", QualityOfService::standard};
    std::unique_ptr<ports::HidClient> client = accelerometer.createClient();
    std::vector<Received> received;

    MotionMachine()
    {
        client->setMatching({{"PrimaryUsagePage", 0xFF00}, {"PrimaryUsage", 3}});
        client->registerEventCallback([this](const ports::HidEvent* event) { write(event); });
        client->schedule(queue);
    }

    void write(const ports::HidEvent* event)
    {
        EXPECT_TRUE(queue.isCurrent());
        Received entry{clock.now().time_since_epoch(), std::nullopt, {}};
        if (event != nullptr) {
            const std::uint32_t base = event->type() << 16U;
            entry.type = event->type();
            entry.values = {event->floatValue(base), event->floatValue(base + 1), event->floatValue(base + 2)};
        }
        received.push_back(entry);
    }

    [[nodiscard]] std::vector<Duration> times() const
    {
        std::vector<Duration> times;
        for (const Received& entry : received) {
            times.push_back(entry.at);
        }
        return times;
    }
};

TEST(SimulatedAccelerometer, PlaysARecordingAtItsOwnTimesFromNowOn)
{
    MotionMachine machine;
    machine.clock.advance(3s);
    machine.accelerometer.play(MotionRecording::parse(
        "t_seconds,x_g,y_g,z_g\n0,1,0,0\n0.0385,2,0,0\n0.0385,3,0,0\n3600.0000001,4,0,0\n", "test"));
    machine.clock.advance(7200s);
    EXPECT_THAT(machine.times(), ElementsAre(3s, 3s + 38'500us, 3s + 38'500us, 3603s + 100ns));
    EXPECT_EQ(machine.received[3].values.x, 4.0);
}

TEST(SimulatedAccelerometer, LosesWhatComesWhileTheMachineSleepsOrNobodyListens)
{
    MotionMachine machine;
    machine.accelerometer.play(MotionRecording::parse(
        "t_seconds,x_g,y_g,z_g\n1,0,0,0\n2,0,0,0\n3,0,0,0\n4,0,0,0\n5,0,0,0\n6,0,0,0\n", "test"));
    machine.clock.advance(1500ms);
    machine.accelerometer.setAsleep(true);
    machine.accelerometer.sample({9, 9, 9});
    machine.clock.advance(1s);
    machine.accelerometer.setAsleep(false);
    machine.clock.advance(1s);
    machine.client->unschedule(machine.queue);
    machine.clock.advance(1s);
    machine.client->schedule(machine.queue);
    machine.clock.advance(10s);
    EXPECT_THAT(machine.times(), ElementsAre(1s, 3s, 5s, 6s));
}

TEST(SimulatedAccelerometer, AtRestItShowsGravityAndNoiseFiftyTimesASecond)
{
    MotionMachine machine;
    machine.accelerometer.setResting(true);
    machine.clock.advance(100s);
    ASSERT_THAT(machine.received, SizeIs(5000));
    EXPECT_EQ(machine.received[0].at, 20ms);
    EXPECT_EQ(machine.received[4999].at, 100s) << "no drift";
    double sum = 0.0;
    double squares = 0.0;
    for (const Received& entry : machine.received) {
        sum += entry.values.z;
        squares += entry.values.x * entry.values.x;
    }
    EXPECT_NEAR(sum / 5000, 1.0, 0.0002);
    EXPECT_NEAR(std::sqrt(squares / 5000), 0.002, 0.0002);

    MotionMachine again;
    again.accelerometer.setResting(true);
    again.clock.advance(20ms);
    EXPECT_EQ(again.received[0].values, machine.received[0].values) << "the same seed";

    machine.received.clear();
    machine.client->copyServices()->front()->setProperty("ReportInterval", 100'000);
    machine.accelerometer.play(MotionRecording::parse("t_seconds,x_g,y_g,z_g\n0.25,5,0,0\n", "test"));
    machine.clock.advance(500ms);
    EXPECT_THAT(machine.times(), ElementsAre(100'250ms, 100'300ms, 100'400ms, 100'500ms))
        << "a recording takes the place of rest";
}

TEST(SimulatedAccelerometer, NothingComesAfterUnschedulingUnlessAnEventIsLate)
{
    MotionMachine machine;
    machine.accelerometer.sample({0, 0, -1});
    machine.client->unschedule(machine.queue);
    machine.clock.runReady();
    EXPECT_THAT(machine.received, SizeIs(0));

    machine.client->schedule(machine.queue);
    machine.accelerometer.faults().set("late-event", 1);
    machine.client->unschedule(machine.queue);
    machine.client->unregisterEventCallback();
    machine.client.reset();
    machine.clock.runReady();
    ASSERT_THAT(machine.received, SizeIs(1));
    EXPECT_GT(machine.received[0].values.x, 1.0);
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
