#include "conformance/Suite.hpp"
#include "runtime/Detached.hpp"
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

void checkMain(const Subject& subject, Report& report)
{
    Scheduler& scheduler = subject.platform.scheduler;
    const auto order = std::make_shared<Order>();
    const auto onMain = std::make_shared<std::atomic<bool>>(true);
    for (int number = 1; number <= 3; ++number) {
        post(scheduler.mainExecutor(), [&scheduler, order, onMain, number] {
            *onMain = *onMain && scheduler.mainExecutor().isCurrent();
            order->add(number);
        });
    }
    report.expect(order->text().empty(), "a job is never run inline");
    subject.waitFor([&] { return order->text().size() == 3; }, patience);
    report.expect(order->text() == "123", "jobs of the main thread run in the order of their posting", order->text());
    report.expect(*onMain, "they run on the main thread");
}

void checkQueues(const Subject& subject, Report& report)
{
    Scheduler& scheduler = subject.platform.scheduler;
    SerialQueue queue{scheduler, "conformance", QualityOfService::userInitiated};
    const auto order = std::make_shared<Order>();
    queue.async(sleepAndNote(20ms, order, 1));
    queue.async([&queue, order] { order->add(queue.isCurrent() ? 2 : 9); });
    subject.waitFor([&] { return order->text().size() == 2; }, patience);
    report.expect(order->text() == "12", "a waiting coroutine holds its queue", order->text());
    report.expect(!queue.isCurrent(), "the main thread is on no queue");
    bool hasRun = false;
    queue.sync([&] { hasRun = true; });
    report.expect(hasRun, "`sync` returns once the function has run");

    const auto elsewhere = std::make_shared<std::atomic<int>>(0);
    detached(scheduler, QualityOfService::utility,
             [&scheduler, elsewhere] { *elsewhere = scheduler.mainExecutor().isCurrent() ? 2 : 1; });
    subject.waitFor([&] { return *elsewhere != 0; }, patience);
    report.expect(*elsewhere == 1, "detached work runs off the main thread");
}

void checkTimers(const Subject& subject, Report& report)
{
    const MainActor main{subject.platform.scheduler};
    const Instant start = main.scheduler().now();
    const auto order = std::make_shared<Order>();
    const Task<void> late = main.spawn(sleepAndNote(60ms, order, 2));
    const Task<void> early = main.spawn(sleepAndNote(30ms, order, 1));
    const Task<void> never = main.spawn(sleepAndNote(45ms, order, 9));
    subject.pass(1ms);
    never.cancel();
    subject.waitFor([&] { return early.isFinished(); }, patience);
    report.expect(main.scheduler().now() - start >= 30ms, "a timer never fires early");
    subject.waitFor([&] { return late.isFinished(); }, patience);
    report.expect(main.scheduler().now() - start >= 60ms, "nor does the next");
    report.expect(main.scheduler().now() - start < 60ms + patience, "timers fire");
    report.expect(order->text() == "12", "timers fire in the order of their deadlines, cancelled ones never",
                  order->text());
}

} // namespace

void checkScheduler(const Subject& subject, Report& report)
{
    checkMain(subject, report);
    checkQueues(subject, report);
    checkTimers(subject, report);
}

} // namespace sentrel::conformance
