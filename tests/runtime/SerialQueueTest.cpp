#include "runtime/SerialQueue.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using test::VirtualMachine;

Async<void> sayAfter(Duration span, std::string word, std::string& story)
{
    co_await sleepFor(span);
    story += word;
}

struct QueueTest : testing::Test {
    VirtualMachine machine;
    std::string story;
    SerialQueue queue{machine.scheduler, "test", QualityOfService::standard};
};

TEST_F(QueueTest, ACancelledJobLetsTheNextOneStart)
{
    const auto slow = queue.async(sayAfter(1h, "slow", story));
    queue.async([&] { story += "next"; });
    machine.clock.advance(1s);
    slow.cancel();
    machine.clock.runReady();
    EXPECT_EQ(story, "next");
    EXPECT_TRUE(slow.isFinished());
}

TEST_F(QueueTest, AJobThatThrowsLetsTheNextOneStart)
{
    const auto failing = queue.async(asAsync([]() -> int { throw std::runtime_error{"no"}; }));
    queue.async([&] { story += "next"; });
    machine.clock.runReady();
    EXPECT_EQ(story, "next");
    EXPECT_TRUE(failing.isFinished());
}

TEST_F(QueueTest, AnItemCanBeCalledOffUntilItStarts)
{
    const auto item = std::make_shared<WorkItem>([&] { story += "never"; });
    queue.asyncAfter(2s, item);
    queue.async(sayAfter(3s, "held", story)); // the item is due, but waits behind this
    machine.clock.advance(2500ms);
    item->cancel();
    machine.clock.runUntilIdle();
    EXPECT_EQ(story, "held");
}

TEST_F(QueueTest, SyncOnAQueueThatNothingCanFreeIsToldAsDeadlock)
{
    Semaphore never;
    struct Waiting {
        static Async<void> on(Semaphore& semaphore) { co_await semaphore.wait(); }
    };
    SerialQueue held{machine.scheduler, "held", QualityOfService::standard};
    held.async(Waiting::on(never));
    post(machine.scheduler.mainExecutor(), [&] {
        Latch latch;
        machine.scheduler.blockUntil(latch);
    });
    EXPECT_THROW(machine.clock.runReady(), std::logic_error);

    post(machine.scheduler.mainExecutor(), [&] { story += "still alive"; });
    machine.clock.runReady();
    EXPECT_EQ(story, "still alive");
}

TEST(QueueDeath, DropsWhatWaitsAndWhatHoldsItWithoutRunningMore)
{
    VirtualMachine machine;
    std::string story;
    auto witness = std::make_shared<int>();
    Task<void> held;
    {
        SerialQueue queue{machine.scheduler, "test", QualityOfService::standard};
        held = queue.async(sayAfter(1s, "held", story));
        queue.async([&story, witness] { story += "pending"; });
        queue.async(sayAfter(1s, "later", story));
        queue.asyncAfter(1s, std::make_shared<WorkItem>([&story, witness] { story += "item"; }));
        machine.clock.runReady();
        EXPECT_EQ(witness.use_count(), 3);
    }
    EXPECT_EQ(witness.use_count(), 1);
    EXPECT_TRUE(held.isFinished());
    machine.clock.advance(1min);
    EXPECT_EQ(story, "");
}

} // namespace
} // namespace sentrel
