#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"
#include "support/AllocationCounter.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using test::VirtualMachine;

Async<void> sleepThenSay(Duration span, std::string word, std::string& story)
{
    co_await sleepFor(span);
    story += word;
}

Async<void> waitFor(Semaphore& semaphore)
{
    co_await semaphore.wait();
}

Async<void> waitUntil(Semaphore& semaphore, Instant deadline, std::string& story)
{
    const bool signalled = co_await semaphore.waitUntil(deadline);
    story += signalled ? "signalled " : "late ";
}

Async<void> awaitTask(Task<void> task)
{
    co_await task;
}

Async<void> tellEnd(Async<void> work, std::string& story)
{
    try {
        co_await std::move(work);
        story += "done";
    } catch (const CancellationError&) {
        story += "cancelled";
    }
}

TEST(Tasks, SleepersOfOneDeadlineWakeInTheOrderInWhichTheyFellAsleep)
{
    VirtualMachine machine;
    std::string story;
    machine.mainActor.spawn(sleepThenSay(2s, "c", story));
    machine.mainActor.spawn(sleepThenSay(1s, "a", story));
    machine.mainActor.spawn(sleepThenSay(1s, "b", story));
    machine.clock.advance(999ms);
    EXPECT_EQ(story, "");
    machine.clock.advance(1ms);
    EXPECT_EQ(story, "ab");
    machine.clock.runUntilIdle();
    EXPECT_EQ(story, "abc");
}

TEST(Tasks, GiveTheirValueOrTheirErrorToEachWhoAwaits)
{
    VirtualMachine machine;
    std::string story;
    const auto failing = machine.mainActor.spawn(asAsync([]() -> void { throw std::runtime_error{"broken "}; }));
    const auto number = detached(machine.scheduler, QualityOfService::utility, [] { return 42; });
    struct Caller {
        static Async<void> ask(Task<void> failing, Task<int> number, std::string& story)
        {
            try {
                co_await failing;
            } catch (const std::runtime_error& error) {
                story += error.what();
            }
            const int value = co_await number;
            story += std::to_string(value) + " ";
        }
    };
    machine.mainActor.spawn(Caller::ask(failing, number, story));
    machine.mainActor.spawn(Caller::ask(failing, number, story));
    machine.clock.runReady();
    EXPECT_EQ(story, "broken 42 broken 42 ");
}

TEST(Tasks, ASemaphoreServesItsWaitersInOrderAndKeepsSpareSignals)
{
    VirtualMachine machine;
    Semaphore semaphore;
    std::string story;
    machine.mainActor.spawn(waitUntil(semaphore, machine.clock.now() + 1s, story));
    machine.mainActor.spawn(waitUntil(semaphore, machine.clock.now() + 2s, story));
    machine.clock.advance(1s);
    EXPECT_EQ(story, "late ");
    semaphore.signal();
    semaphore.signal();
    machine.clock.runReady();
    EXPECT_EQ(story, "late signalled ");
    machine.mainActor.spawn(waitUntil(semaphore, machine.clock.now(), story));
    machine.clock.runReady();
    EXPECT_EQ(story, "late signalled signalled ");
}

struct CancelledWait {
    std::string name;
    std::function<Async<void>(VirtualMachine&, Semaphore&)> make;
};

class Cancellation : public testing::TestWithParam<CancelledWait> {};

TEST_P(Cancellation, EndsTheWaitAtOnceAndEveryLaterOne)
{
    VirtualMachine machine;
    Semaphore semaphore;
    for (const bool beforeItsFirstTurn : {true, false}) {
        std::string story;
        const auto task = machine.mainActor.spawn(tellEnd(GetParam().make(machine, semaphore), story));
        if (!beforeItsFirstTurn) {
            machine.clock.runReady();
            EXPECT_EQ(story, "");
        }
        task.cancel();
        task.cancel();
        machine.clock.runReady();
        EXPECT_EQ(story, "cancelled");
        EXPECT_TRUE(task.isFinished());
        EXPECT_EQ(machine.elapsed(), 0s);
    }
    // Nothing of the wait is left behind: this signal is for the next who comes.
    semaphore.signal();
    const auto next = machine.mainActor.spawn(waitFor(semaphore));
    machine.clock.runReady();
    EXPECT_TRUE(next.isFinished());
}

INSTANTIATE_TEST_SUITE_P(
    Of, Cancellation,
    testing::Values(CancelledWait{"Sleep", [](VirtualMachine&, Semaphore&) -> Async<void> { co_await sleepFor(1h); }},
                    CancelledWait{"Semaphore",
                                  [](VirtualMachine&, Semaphore& semaphore) { return waitFor(semaphore); }},
                    CancelledWait{"SemaphoreWithDeadline",
                                  [](VirtualMachine& machine, Semaphore& semaphore) -> Async<void> {
                                      const Instant deadline = machine.clock.now() + 1h;
                                      co_await semaphore.waitUntil(deadline);
                                  }},
                    CancelledWait{"TaskEnd",
                                  [](VirtualMachine& machine, Semaphore&) {
                                      static std::string unheard;
                                      return awaitTask(machine.mainActor.spawn(sleepThenSay(1h, "", unheard)));
                                  }}),
    [](const auto& instance) { return instance.param.name; });

TEST(Tasks, CancellingWhoWaitsLeavesTheTaskWaitedForAlone)
{
    VirtualMachine machine;
    std::string story;
    const auto work = machine.mainActor.spawn(sleepThenSay(1s, "worked", story));
    const auto waiting = machine.mainActor.spawn(awaitTask(work));
    machine.clock.runReady();
    waiting.cancel();
    machine.clock.advance(1s);
    EXPECT_EQ(story, "worked");
    EXPECT_FALSE(work.isCancelled());
}

/// An owner whose coroutines use its members: its end must leave none of them running.
class Owner {
public:
    Owner(MainActor mainActor, std::string& story) : story_(story), note_("woken")
    {
        tasks_.add(mainActor.spawn(afterSleep()));
        tasks_.add(mainActor.spawn(afterSignal()));
        tasks_.add(mainActor.spawn(dieSoon()));
    }
    void signal() { semaphore_.signal(); }
    std::unique_ptr<Owner>* self = nullptr;

private:
    Async<void> afterSleep()
    {
        co_await sleepFor(1s);
        story_ += note_;
    }
    Async<void> afterSignal()
    {
        co_await semaphore_.wait();
        story_ += note_;
    }
    Async<void> dieSoon()
    {
        co_await sleepFor(500ms);
        if (self != nullptr) {
            std::string& story = story_;
            self->reset();
            co_await sleepFor(0s);
            story += "ran on";
        }
    }

    std::string& story_;
    std::string note_;
    Semaphore semaphore_;
    TaskBag tasks_;
};

TEST(Tasks, OfADeadOwnerRunNoMoreCode)
{
    VirtualMachine machine;
    std::string story;
    auto beforeTheFirstTurn = std::make_unique<Owner>(machine.mainActor, story);
    beforeTheFirstTurn.reset();
    auto outside = std::make_unique<Owner>(machine.mainActor, story);
    auto inATurn = std::make_unique<Owner>(machine.mainActor, story);
    auto byItsOwnTask = std::make_unique<Owner>(machine.mainActor, story);
    auto withTheEventUnderWay = std::make_unique<Owner>(machine.mainActor, story);
    byItsOwnTask->self = &byItsOwnTask;
    machine.clock.runReady();

    outside.reset();
    post(machine.scheduler.mainExecutor(), [&] { inATurn.reset(); });
    withTheEventUnderWay->signal();
    withTheEventUnderWay.reset();
    machine.clock.runUntilIdle();

    EXPECT_EQ(byItsOwnTask, nullptr);
    EXPECT_EQ(story, "");
}

TEST(Tasks, EndWithTheirScheduler)
{
    std::string story;
    Semaphore semaphore;
    auto witness = std::make_shared<int>();
    struct Holding {
        static Async<void> on(std::shared_ptr<int> witness, Semaphore& semaphore)
        {
            co_await semaphore.wait();
            *witness = 1;
        }
    };
    {
        VirtualMachine machine;
        const auto waiting = machine.mainActor.spawn(Holding::on(witness, semaphore));
        machine.mainActor.spawn(awaitTask(waiting));
        machine.clock.runReady();
        machine.mainActor.spawn(Holding::on(witness, semaphore));
    }
    EXPECT_EQ(witness.use_count(), 1);
    semaphore.signal();
}

TEST(Tasks, AllocateOnlyTheirFrameAndNothingForAHop)
{
    if (!test::AllocationCounter::isAvailable()) {
        GTEST_SKIP() << "the sanitizer keeps the allocation operators to itself";
    }
    VirtualMachine machine;
    struct Hopping {
        static Async<void> hop(Semaphore& semaphore, int times)
        {
            for (int i = 0; i < times; ++i) {
                co_await sleepFor(1ms);
                semaphore.signal();
                co_await semaphore.wait();
            }
        }
    };
    Semaphore semaphore;
    machine.mainActor.spawn(Hopping::hop(semaphore, 1)); // the list of timers grows to its size
    machine.clock.runUntilIdle();

    const test::AllocationCounter allocations;
    machine.mainActor.spawn(Hopping::hop(semaphore, 1000));
    machine.clock.runUntilIdle();
    EXPECT_EQ(allocations.count(), 1U);
    EXPECT_EQ(machine.elapsed(), 1001ms);
}

} // namespace
} // namespace sentrel
