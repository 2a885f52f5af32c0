#include "conformance/Suite.hpp"
#include "runtime/Detached.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"

#include <atomic>
#include <memory>
#include <mutex>

namespace sentrel::conformance {

using namespace std::chrono_literals;

namespace {

constexpr Duration patience = 5s;

/// The order of events on several threads.
class Order {
public:
    void add(int number)
    {
        const std::lock_guard guard{mutex_};
        numbers_ += static_cast<char>('0' + number);
    }
    [[nodiscard]] std::string text() const
    {
        const std::lock_guard guard{mutex_};
        return numbers_;
    }

private:
    mutable std::mutex mutex_;
    std::string numbers_;
};

Async<void> sleepAndNote(Duration span, std::shared_ptr<Order> order, int number)
{
    co_await sleepFor(span);
    order->add(number);
}

/// Notes 2 when the deadline comes, and 3 when the sleeper has been cancelled then.
Async<void> waitAndCancel(Instant deadline, Task<void> sleeper, std::shared_ptr<Order> order)
{
    Semaphore never;
    const bool signalled = co_await never.waitUntil(deadline);
    order->add(signalled ? 9 : 2);
    sleeper.cancel();
    try {
        co_await sleeper;
    } catch (const CancellationError&) {
        order->add(3);
    }
}

void checkMain(Scheduler& scheduler, const Passing& pass, Report& report)
{
    const auto order = std::make_shared<Order>();
    const auto onMain = std::make_shared<std::atomic<bool>>(true);
    for (int number = 1; number <= 3; ++number) {
        post(scheduler.mainExecutor(), [&scheduler, order, onMain, number] {
            *onMain = *onMain && scheduler.mainExecutor().isCurrent();
            order->add(number);
        });
    }
    report.expect(order->text().empty(), "a job is never run inline");
    waitFor(pass, [&] { return order->text().size() == 3; }, patience);
    report.expect(order->text() == "123", "jobs of the main thread run in the order of their posting", order->text());
    report.expect(*onMain, "they run on the main thread");
}

void checkQueues(Scheduler& scheduler, const Passing& pass, Report& report)
{
    SerialQueue queue{scheduler, "conformance", QualityOfService::userInitiated};
    const auto order = std::make_shared<Order>();
    queue.async(sleepAndNote(20ms, order, 1));
    queue.async([&queue, order] { order->add(queue.isCurrent() ? 2 : 9); });
    waitFor(pass, [&] { return order->text().size() == 2; }, patience);
    report.expect(order->text() == "12", "a waiting coroutine holds its queue", order->text());
    report.expect(!queue.isCurrent(), "the main thread is on no queue");
    bool hasRun = false;
    queue.sync([&] { hasRun = true; });
    report.expect(hasRun, "`sync` returns once the function has run");

    const auto elsewhere = std::make_shared<std::atomic<int>>(0);
    detached(scheduler, QualityOfService::utility,
             [&scheduler, elsewhere] { *elsewhere = scheduler.mainExecutor().isCurrent() ? 2 : 1; });
    waitFor(pass, [&] { return *elsewhere != 0; }, patience);
    report.expect(*elsewhere == 1, "detached work runs off the main thread");
}

void checkTimers(Scheduler& scheduler, const Passing& pass, Report& report)
{
    const MainActor main{scheduler};
    const Instant start = scheduler.now();
    const auto order = std::make_shared<Order>();
    const Task<void> late = main.spawn(sleepAndNote(60ms, order, 2));
    const Task<void> early = main.spawn(sleepAndNote(30ms, order, 1));
    const Task<void> never = main.spawn(sleepAndNote(45ms, order, 9));
    pass(1ms);
    never.cancel();
    waitFor(pass, [&] { return early.isFinished(); }, patience);
    report.expect(scheduler.now() - start >= 30ms, "a timer never fires early");
    waitFor(pass, [&] { return late.isFinished(); }, patience);
    report.expect(scheduler.now() - start >= 60ms, "nor does the next");
    report.expect(scheduler.now() - start < 60ms + patience, "timers fire");
    report.expect(order->text() == "12", "timers fire in the order of their deadlines, cancelled ones never",
                  order->text());
}

void checkItemsAndCancellation(Scheduler& scheduler, const Passing& pass, Report& report)
{
    SerialQueue queue{scheduler, "conformance", QualityOfService::userInitiated};
    const auto order = std::make_shared<Order>();
    const auto cancelled = std::make_shared<WorkItem>([order] { order->add(9); });
    queue.asyncAfter(10ms, cancelled);
    queue.asyncAfter(30ms, std::make_shared<WorkItem>([order] { order->add(1); }));
    cancelled->cancel();
    waitFor(pass, [&] { return !order->text().empty(); }, patience);
    const auto sleeper = queue.async(sleepAndNote(1h, order, 9));
    const Instant deadline = scheduler.now() + 10ms;
    const Task<void> waiting = MainActor{scheduler}.spawn(waitAndCancel(deadline, sleeper, order));
    waitFor(pass, [&] { return waiting.isFinished(); }, patience);
    report.expect(order->text() == "123", "items run in time, deadlines come, and sleepers are cancelled",
                  order->text());

    int ticks = 0;
    const RepeatingTimer timer{scheduler, scheduler.mainExecutor(), 20ms, [&ticks] { ++ticks; }};
    waitFor(pass, [&] { return ticks == 3; }, patience);
    report.expect(ticks == 3, "a timer ticks on", std::to_string(ticks));
}

} // namespace

void checkScheduler(Scheduler& scheduler, const Passing& pass, Report& report)
{
    checkMain(scheduler, pass, report);
    checkQueues(scheduler, pass, report);
    checkTimers(scheduler, pass, report);
    checkItemsAndCancellation(scheduler, pass, report);
}

} // namespace sentrel::conformance
