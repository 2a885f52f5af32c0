#include "runtime/RepeatingTimer.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using test::VirtualMachine;

struct TimerTest : testing::Test {
    VirtualMachine machine;
    std::vector<Duration> ticks;

    [[nodiscard]] auto noteTick()
    {
        return [this] { ticks.push_back(machine.elapsed()); };
    }
    [[nodiscard]] Executor& main() { return machine.scheduler.mainExecutor(); }
};

TEST_F(TimerTest, DoesNotDriftWhenItsQueueIsLate)
{
    SerialQueue queue{machine.scheduler, "busy", QualityOfService::standard};
    const RepeatingTimer timer{machine.scheduler, queue.executor(), 2s, noteTick()};
    struct Busy {
        static Async<void> until(Duration span) { co_await sleepFor(span); }
    };
    queue.async(Busy::until(2500ms));
    machine.clock.advance(6s);
    EXPECT_EQ(ticks, (std::vector<Duration>{2500ms, 4s, 6s}));
}

TEST_F(TimerTest, TicksMissedWhileTheMachineSleptComeAsOne)
{
    const RepeatingTimer timer{machine.scheduler, main(), 2s, noteTick()};
    machine.clock.advance(3s);
    machine.scheduler.setAsleep(true);
    machine.clock.advance(10s); // it would have ticked at 4, 6, 8, 10 and 12 s
    EXPECT_EQ(ticks, (std::vector<Duration>{2s}));
    machine.scheduler.setAsleep(false);
    machine.clock.advance(3s);
    EXPECT_EQ(ticks, (std::vector<Duration>{2s, 13s, 14s, 16s}));
}

TEST_F(TimerTest, CanBeStoppedByItsOwnTick)
{
    std::optional<RepeatingTimer> timer;
    timer.emplace(machine.scheduler, main(), 1s, [&] {
        timer.reset();
        ticks.push_back(machine.elapsed()); // the captures outlive the timer
    });
    machine.clock.advance(1h);
    EXPECT_EQ(ticks, (std::vector<Duration>{1s}));
}

TEST_F(TimerTest, TakesATickThatIsUnderWayBackWhenItStops)
{
    SerialQueue queue{machine.scheduler, "busy", QualityOfService::standard};
    std::optional<RepeatingTimer> timer;
    timer.emplace(machine.scheduler, queue.executor(), 1s, noteTick());
    struct Busy {
        static Async<void> stopAfter(Duration span, std::optional<RepeatingTimer>& timer)
        {
            co_await sleepFor(span);
            timer.reset();
        }
    };
    queue.async(Busy::stopAfter(1500ms, timer)); // the tick of 1 s waits behind this
    machine.clock.advance(1h);
    EXPECT_TRUE(ticks.empty());
}

TEST(SpansOfSeconds, AreNeverNegativeAndNeverOverflow)
{
    EXPECT_EQ(durationFromSeconds(0.5), 500ms);
    EXPECT_EQ(durationFromSeconds(-1.0), 0s);
    EXPECT_EQ(durationFromSeconds(std::numeric_limits<double>::quiet_NaN()), 0s);
    EXPECT_GT(durationFromSeconds(std::numeric_limits<double>::infinity()), 24h * 36500);
}

} // namespace
} // namespace sentrel
