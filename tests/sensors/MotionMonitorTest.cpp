#include "sensors/MotionMonitor.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/motion/SimulatedAccelerometer.hpp"
#include "support/AllocationCounter.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

struct MovableMac {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::SimulatedWallClock wallClock{scheduler, Date{1000.0}};
    simulation::SimulatedAccelerometer accelerometer{scheduler, log, 1};
    std::unique_ptr<MotionMonitor> monitor =
        std::make_unique<MotionMonitor>(MainActor{scheduler}, accelerometer, wallClock);
    int moved = 0;

    MovableMac()
    {
        monitor->onMotionDetected = [this] { ++moved; };
    }

    void sample(double x)
    {
        accelerometer.sample({x, 0.0, 1.0});
        clock.runReady();
    }
};

TEST(MotionMonitor, ReportsAMovementAtMostOnceInFiveSecondsUntilItIsStopped)
{
    MovableMac mac;
    mac.monitor->start(0.55); // beyond 0.49 g
    EXPECT_TRUE(mac.monitor->isAccelerometerAvailable());
    mac.sample(5.0);
    EXPECT_EQ(mac.moved, 0) << "the first sample is the baseline";
    mac.sample(5.6);
    EXPECT_EQ(mac.moved, 1);
    mac.sample(5.6);
    EXPECT_EQ(mac.moved, 1) << "cooling down";
    mac.monitor->start(0.55);
    mac.sample(0.0);
    mac.sample(0.6);
    EXPECT_EQ(mac.moved, 2) << "a new start has a new baseline and no cooldown";

    mac.clock.advance(6s);
    mac.accelerometer.sample({9.0, 0.0, 0.0}); // on its way
    mac.monitor->stop();
    mac.sample(-9.0);
    EXPECT_EQ(mac.moved, 2);

    mac.monitor->start(0.55);
    mac.accelerometer.sample({0.0, 0.0, 1.0});
    mac.accelerometer.sample({9.0, 0.0, 1.0});
    // Behind the sensor queue's turn and before that of the tasks that it starts.
    post(mac.scheduler.mainExecutor(), [&mac] { mac.monitor->stop(); });
    mac.clock.runReady();
    EXPECT_EQ(mac.moved, 2);
}

TEST(MotionMonitor, HearsOnlyTheAccelerometersOwnEvents)
{
    MovableMac mac;
    mac.monitor->start(1.0);
    mac.sample(0.0);
    for (const std::uint32_t type : {0U, 12U, 14U}) {
        mac.accelerometer.sendEvent(type, {7.0, 7.0, 7.0});
    }
    mac.accelerometer.sendNullEvent();
    mac.clock.runReady();
    EXPECT_EQ(mac.moved, 0);
    mac.sample(0.1);
    EXPECT_EQ(mac.moved, 1);
}

TEST(MotionMonitor, AsksForFiftySamplesASecond)
{
    MovableMac mac;
    mac.accelerometer.setResting(true);
    mac.monitor->start(0.35);
    const auto turns = mac.clock.turns();
    mac.clock.advance(10s);
    const auto perSample = static_cast<double>(mac.clock.turns() - turns) / 500.0;
    EXPECT_NEAR(perSample, 3.0, 0.05) << "the device's tick, the sensor queue and one task on the main actor";
    EXPECT_EQ(mac.moved, 0);
}

TEST(MotionMonitor, AllocatesNothingForASampleButItsTask)
{
    if (!test::AllocationCounter::isAvailable()) {
        GTEST_SKIP() << "a sanitizer keeps the allocation operators to itself";
    }
    MovableMac mac;
    mac.monitor->start(0.35);
    mac.sample(0.0);
    const test::AllocationCounter allocations;
    for (int i = 0; i < 10; ++i) {
        mac.accelerometer.sendEvent(13, {0.01, 0.0, 1.0}); // as a sample, but without an entry in the log
        mac.clock.runReady();
    }
    EXPECT_EQ(allocations.count(), 10U);
}

TEST(MotionMonitor, IsSilentAndSaysSoWithoutAUsableAccelerometer)
{
    MovableMac absent;
    absent.accelerometer.setPresent(false);
    absent.monitor->start(1.0);
    EXPECT_FALSE(absent.monitor->isAccelerometerAvailable());
    absent.accelerometer.setPresent(true);
    EXPECT_TRUE(absent.monitor->refreshAvailability());
    EXPECT_TRUE(absent.monitor->isAccelerometerAvailable());

    for (const char* const fault : {"client", "services"}) {
        MovableMac mac;
        mac.accelerometer.faults().set(fault);
        mac.monitor->start(1.0);
        EXPECT_FALSE(mac.monitor->isAccelerometerAvailable()) << fault;
        mac.sample(0.0);
        mac.sample(9.0);
        EXPECT_EQ(mac.moved, 0) << fault;
    }
}

TEST(MotionMonitor, HearsNothingThatComesLateAndMayDieWithSamplesUnderWay)
{
    MovableMac mac;
    mac.monitor->start(1.0);
    mac.sample(0.0);
    mac.accelerometer.faults().set("late-event");
    mac.monitor->stop();
    mac.clock.advance(1s);
    EXPECT_EQ(mac.moved, 0);

    mac.monitor->start(1.0);
    mac.sample(0.0);
    mac.accelerometer.sample({9.0, 0.0, 0.0});
    mac.monitor.reset();
    mac.clock.advance(1s);
    EXPECT_EQ(mac.moved, 0);
}

/// Lets the other threads come forward for a while.
void giveWay()
{
    for (int i = 0; i < 10; ++i) {
        std::this_thread::yield();
    }
}

TEST(ThreadsMotion, StartsAndStopsWhileSamplesStream)
{
    ThreadScheduler scheduler;
    simulation::EventLog log{scheduler};
    simulation::SimulatedAccelerometer accelerometer{scheduler, log, 1};
    std::atomic<int> received = 0;
    std::atomic<bool> isStreaming = true;
    std::thread shaking{[&] {
        while (isStreaming) {
            accelerometer.sample({1.0, 2.0, 3.0});
            giveWay();
        }
    }};
    int receivedAfterStop = 0;
    for (int round = 0; round < 20; ++round) {
        AccelerometerEventHandler handler{scheduler, accelerometer, [&](double, double, double) { ++received; }};
        const int before = received;
        ASSERT_TRUE(handler.start(0xFF00, 3, 20'000));
        while (received == before) {
            std::this_thread::yield();
        }
        if (round % 2 == 0) {
            handler.stop();
            const int stopped = received;
            giveWay();
            receivedAfterStop += received - stopped;
        } // else its end stops it
    }
    isStreaming = false;
    shaking.join();
    EXPECT_EQ(receivedAfterStop, 0);
}

/// A sensor that opens a latch when its client has been called off.
class LatchedSensor final : public ports::HidEventSystem {
public:
    explicit LatchedSensor(Latch& calledOff) : calledOff_(calledOff) {}
    [[nodiscard]] std::unique_ptr<ports::HidClient> createClient() override { return std::make_unique<Client>(*this); }

    SerialQueue* queue = nullptr;
    std::function<void(const ports::HidEvent*)> received;

private:
    struct Service final : ports::HidService {
        bool setProperty(const std::string& /*key*/, std::int64_t /*value*/) override { return true; }
    };
    struct Client final : ports::HidClient {
        explicit Client(LatchedSensor& itsSensor) : sensor(itsSensor) {}
        void setMatching(const std::map<std::string, std::int64_t>& /*matching*/) override {}
        [[nodiscard]] std::optional<std::vector<std::unique_ptr<ports::HidService>>> copyServices() override
        {
            std::vector<std::unique_ptr<ports::HidService>> services;
            services.push_back(std::make_unique<Service>());
            return services;
        }
        void registerEventCallback(std::function<void(const ports::HidEvent*)> callback) override
        {
            sensor.received = std::move(callback);
        }
        void unregisterEventCallback() override { sensor.calledOff_.open(); }
        void schedule(SerialQueue& scheduled) override { sensor.queue = &scheduled; }
        void unschedule(SerialQueue& /*scheduled*/) override {}
        LatchedSensor& sensor;
    };

    Latch& calledOff_;
};

struct StillEvent final : ports::HidEvent {
    [[nodiscard]] std::uint32_t type() const override { return 13; }
    [[nodiscard]] double floatValue(std::uint32_t /*field*/) const override { return 0.0; }
};

TEST(ThreadsMotion, NeitherStoppingNorDyingOvertakesACallbackInProgress)
{
    for (const bool isDestroyed : {false, true}) {
        ThreadScheduler scheduler;
        Latch begun;
        Latch calledOff;
        std::atomic<bool> hasEnded = false;
        LatchedSensor sensor{calledOff};
        auto handler = std::make_unique<AccelerometerEventHandler>(scheduler, sensor, [&](double, double, double) {
            begun.open();
            calledOff.wait(); // from here on only the waiting holds the handler up
            giveWay();
            hasEnded = true;
        });
        ASSERT_TRUE(handler->start(0xFF00, 3, 20'000));
        sensor.queue->async([&sensor] {
            const StillEvent event;
            sensor.received(&event);
        });
        begun.wait();
        if (isDestroyed) {
            handler.reset();
        } else {
            handler->stop();
        }
        EXPECT_TRUE(hasEnded) << (isDestroyed ? "its end" : "stop");
    }
}

} // namespace
} // namespace sentrel
