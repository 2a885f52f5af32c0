#include "runtime/RepeatingTimer.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

/// A program that uses every part of the runtime and notes on the main actor what happened.
class Program {
public:
    Program(Scheduler& scheduler, std::function<void()> ended)
        : scheduler_(scheduler), queue_(scheduler, "work", QualityOfService::userInitiated), ended_(std::move(ended))
    {
        tasks_.add(MainActor{scheduler_}.spawn(live()));
    }
    [[nodiscard]] const std::vector<std::string>& story() const { return story_; }

private:
    Async<void> live()
    {
        note("begins");
        co_await timersAndItems();
        co_await heldQueue();
        co_await semaphoresAndCancellation();
        const int sum = co_await detached(scheduler_, QualityOfService::utility, [] { return 40 + 2; });
        note("detached work gives " + std::to_string(sum));
        note("ends");
        ended_();
    }

    Async<void> timersAndItems()
    {
        const auto cancelled = std::make_shared<WorkItem>([this] { signal("a cancelled item ran"); });
        queue_.asyncAfter(10ms, cancelled);
        queue_.asyncAfter(30ms, std::make_shared<WorkItem>([this] { signal("the item ran"); }));
        cancelled->cancel();
        co_await done_.wait();
        note(takeWord());
        // Only now, because no order of two threads' timers is promised on a machine that has other work.
        int ticks = 0;
        const RepeatingTimer timer{scheduler_, scheduler_.mainExecutor(), 20ms, [&] {
                                       if (++ticks == 3) {
                                           signal("the third tick");
                                       }
                                   }};
        co_await done_.wait();
        note(takeWord());
    }

    Async<void> heldQueue()
    {
        queue_.async(workFor(20ms));
        const auto second = queue_.async(workFor(0ms));
        queue_.sync([this] { signal("sync came third"); });
        note(second.isFinished() ? takeWord() : "out of turn");
        co_await done_.wait();
    }

    Async<void> semaphoresAndCancellation()
    {
        Semaphore never;
        const bool signalled = co_await never.waitUntil(scheduler_.now() + 10ms);
        note(signalled ? "signalled" : "the deadline came");
        const auto sleeper = queue_.async(workFor(1h));
        co_await sleepFor(5ms);
        sleeper.cancel();
        try {
            co_await sleeper;
        } catch (const CancellationError&) {
            note("the sleeper was cancelled");
        }
    }

    Async<void> workFor(Duration span) { co_await sleepFor(span); }

    void note(std::string line) { story_.push_back(std::move(line)); }

    /// On any thread: leaves a word for the main actor and wakes it.
    void signal(std::string word)
    {
        const std::lock_guard guard{mutex_};
        words_.push_back(std::move(word));
        done_.signal();
    }
    std::string takeWord()
    {
        const std::lock_guard guard{mutex_};
        std::string word = words_.front();
        words_.erase(words_.begin());
        return word;
    }

    Scheduler& scheduler_;
    std::vector<std::string> story_;
    std::mutex mutex_;
    std::vector<std::string> words_;
    Semaphore done_;
    SerialQueue queue_;
    std::function<void()> ended_;
    TaskBag tasks_;
};

const std::vector<std::string> expectedStory{"begins",
                                             "the item ran",
                                             "the third tick",
                                             "sync came third",
                                             "the deadline came",
                                             "the sleeper was cancelled",
                                             "detached work gives 42",
                                             "ends"};

struct VirtualRun {
    std::vector<std::string> story;
    Duration took{};
    std::uint64_t turns = 0;
    bool operator==(const VirtualRun&) const = default;
};

VirtualRun runVirtually()
{
    test::VirtualMachine machine;
    Program program{machine.scheduler, [] {}};
    machine.clock.runUntilIdle();
    return {program.story(), machine.elapsed(), machine.clock.turns()};
}

TEST(ThreadsAndVirtualTime, TellTheSameStory)
{
    EXPECT_EQ(runVirtually().story, expectedStory);

    ThreadScheduler scheduler;
    Program program{scheduler, [&] { scheduler.stopMain(); }};
    scheduler.runMain();
    EXPECT_EQ(program.story(), expectedStory);
}

TEST(ThreadsAndVirtualTime, TwoVirtualRunsAreTheSameToTheTurn)
{
    EXPECT_EQ(runVirtually(), runVirtually());
}

/// Many tasks on several queues that signal, sleep, cancel, post across and await each other.
class Crowd {
public:
    static constexpr int people = 40;
    static constexpr int rounds = 50;

    explicit Crowd(ThreadScheduler& scheduler) : scheduler_(scheduler)
    {
        for (int i = 0; i < 4; ++i) {
            queues_.push_back(std::make_unique<SerialQueue>(scheduler, "crowd", QualityOfService::utility));
        }
        for (int i = 0; i < people; ++i) {
            people_.push_back(queue(i).async(person(i)));
        }
        everybody_ = MainActor{scheduler}.spawn(awaitEverybody());
    }
    [[nodiscard]] int finished() const { return finished_; }
    [[nodiscard]] int sum() const { return sum_; }

private:
    [[nodiscard]] SerialQueue& queue(int i) { return *queues_[static_cast<std::size_t>(i) % queues_.size()]; }

    /// Never waits while holding its queue for what only the same queue can bring.
    Async<void> person(int i)
    {
        for (int round = 0; round < rounds; ++round) {
            const auto nap = detached(scheduler_, QualityOfService::utility, napFor(1h));
            const auto helper = detached(scheduler_, QualityOfService::utility, [round] { return round; });
            post(scheduler_.mainExecutor(), [nap] { nap.cancel(); });
            post(queue(i + 1).executor(), [this] { semaphore_.signal(); });
            const int value = co_await helper;
            sum_ += value;
            co_await endOf(nap);
            const Instant deadline = scheduler_.now() + std::chrono::microseconds{round};
            co_await semaphore_.waitUntil(deadline);
        }
    }

    static Async<void> napFor(Duration span) { co_await sleepFor(span); }

    static Async<void> endOf(Task<void> task)
    {
        try {
            co_await task;
        } catch (const CancellationError&) {
        }
    }

    Async<void> awaitEverybody()
    {
        for (const Task<void>& each : people_) {
            co_await each;
            ++finished_;
        }
        scheduler_.stopMain();
    }

    ThreadScheduler& scheduler_;
    Semaphore semaphore_;
    std::atomic<int> sum_ = 0;
    int finished_ = 0;
    std::vector<Task<void>> people_;
    Task<void> everybody_;
    std::vector<std::unique_ptr<SerialQueue>> queues_;
};

TEST(ThreadsUnderLoad, LoseNoTaskNoSignalAndNoCancellation)
{
    ThreadScheduler scheduler;
    Crowd crowd{scheduler};
    scheduler.runMain();
    EXPECT_EQ(crowd.finished(), Crowd::people);
    EXPECT_EQ(crowd.sum(), Crowd::people * (Crowd::rounds * (Crowd::rounds - 1) / 2));
}

/// Dies on the main thread while its queue and timers are busy on others.
struct ShortLived {
    explicit ShortLived(Scheduler& scheduler) : queue(scheduler, "short", QualityOfService::utility)
    {
        for (int i = 0; i < 4; ++i) {
            queue.async(blink());
            queue.asyncAfter(std::chrono::microseconds{i * 50}, std::make_shared<WorkItem>([this] { ++count; }));
        }
        tasks.add(MainActor{scheduler}.spawn(blink()));
        timer.emplace(scheduler, scheduler.mainExecutor(), 100us, [this] { ++ticks; });
    }
    Async<void> blink()
    {
        for (int i = 0; i < 3; ++i) {
            co_await sleepFor(50us);
            ++count;
        }
    }

    std::atomic<int> count = 0;
    int ticks = 0;
    std::optional<RepeatingTimer> timer;
    SerialQueue queue;
    TaskBag tasks;
};

TEST(ThreadsUnderLoad, OwnersMayDieAtAnyMoment)
{
    ThreadScheduler scheduler;
    struct Reaper {
        static Async<void> liveAndDie(ThreadScheduler& scheduler)
        {
            for (int i = 0; i < 150; ++i) {
                auto owner = std::make_unique<ShortLived>(scheduler);
                const std::chrono::microseconds life{i * 3};
                co_await sleepFor(life);
                owner.reset();
            }
            scheduler.stopMain();
        }
    };
    const auto reaper = MainActor{scheduler}.spawn(Reaper::liveAndDie(scheduler));
    scheduler.runMain(); // the sanitizers judge what happens here
    EXPECT_TRUE(reaper.isFinished() || !reaper.isCancelled());
}

TEST(ThreadsUnderLoad, ASchedulerMayEndWithEverythingUnderWay)
{
    auto witness = std::make_shared<int>();
    struct Restless {
        static Async<void> run(std::shared_ptr<int> witness)
        {
            for (;;) {
                co_await sleepFor(20us);
                if (witness == nullptr) {
                    co_return;
                }
            }
        }
    };
    for (int i = 0; i < 20; ++i) {
        ThreadScheduler scheduler;
        SerialQueue queue{scheduler, "busy", QualityOfService::utility};
        for (int j = 0; j < 5; ++j) {
            detached(scheduler, QualityOfService::utility, Restless::run(witness));
            queue.async(Restless::run(witness));
            MainActor{scheduler}.spawn(Restless::run(witness));
        }
        struct Stop {
            static Async<void> later(ThreadScheduler& scheduler)
            {
                co_await sleepFor(1ms);
                scheduler.stopMain();
            }
        };
        MainActor{scheduler}.spawn(Stop::later(scheduler));
        scheduler.runMain();
    }
    EXPECT_EQ(witness.use_count(), 1);
}

} // namespace
} // namespace sentrel
