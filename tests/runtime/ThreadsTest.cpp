#include "runtime/Detached.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/ThreadScheduler.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

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
