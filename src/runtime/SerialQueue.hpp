#pragma once

#include "runtime/Detached.hpp"
#include "runtime/Latch.hpp"
#include "runtime/Task.hpp"
#include "runtime/TimedLatch.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace sentrel {

class WorkItem;

/// Runs jobs one after another, in the order in which they came. A job may be a coroutine: while it waits (for a photo,
/// a semaphore, a sleep) the queue is held, and the next job starts only when it has finished. Jobs may be added on any
/// thread. The destructor waits for the code that is running on the queue and drops everything else.
class SerialQueue final : private Executor, private QueueHold {
public:
    SerialQueue(Scheduler& scheduler, std::string label, QualityOfService qualityOfService);
    ~SerialQueue() override;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Adds a coroutine as a job.
    template <class T> Task<T> async(Async<T> work)
    {
        return Task<T>::start(scheduler_, *executor_, *this, this, std::move(work));
    }

    /// Adds a plain function as a job; one allocation.
    template <class Function>
        requires std::is_invocable_v<Function&>
    void async(Function function)
    {
        sentrel::post(executor(), std::move(function));
    }

    /// Adds a function as a job, and blocks the calling context until it has run. Not from a job of this queue. An
    /// exception of the function ends the program.
    template <class Function> void sync(Function function)
    {
        Latch latch;
        async([&]() noexcept {
            function();
            latch.open();
        });
        scheduler_.blockUntil(latch);
    }

    /// As `sync`, but waits no longer than `longest`; false when the function had not run by then. The function still
    /// runs when its turn comes.
    template <class Function> bool syncWithin(Duration longest, Function function)
    {
        const auto opening = std::make_shared<TimedLatch>();
        async([opening, function = std::move(function)]() mutable noexcept {
            function();
            opening->finish();
        });
        return opening->waitFor(scheduler_, longest);
    }

    /// Waits for the code that is running on the queue; nothing runs on it afterwards, and the destructor drops waiting
    /// jobs. For owners that destroy what the jobs use before the queue. Not from a job of this queue.
    void close() { executor_->stop(); }

    /// Adds the item as a job after a delay on the continuous clock, unless the item is cancelled before.
    void asyncAfter(Duration delay, const std::shared_ptr<WorkItem>& item);

    /// The executor whose jobs queue with all others, for timers and ports that post to this queue.
    [[nodiscard]] Executor& executor() { return *this; }

    /// True when the calling code runs on this queue.
    [[nodiscard]] bool isCurrent() const override { return executor_->isCurrent(); }
    [[nodiscard]] void* nativeQueue() override { return executor_->nativeQueue(); }
    [[nodiscard]] Scheduler& scheduler() const { return scheduler_; }
    [[nodiscard]] const std::string& label() const { return label_; }

private:
    /// Runs the next job on the queue's own executor.
    class Turn final : public Job {
    public:
        explicit Turn(SerialQueue& queue) : queue_(queue) {}
        void run() override { queue_.takeTurn(); }

    private:
        SerialQueue& queue_;
    };

    void post(Job& job) override;
    bool withdraw(Job& job) override;
    void stop() override { executor_->stop(); }
    Async<void> performLater(Duration delay, std::shared_ptr<WorkItem> item);
    void takeTurn();
    void taskBegan(TaskState& task) override;
    void taskFinished() override;

    Scheduler& scheduler_;
    const std::string label_;
    std::mutex mutex_;
    JobList pending_;
    bool isTurnPosted_ = false; ///< or owed
    std::optional<TaskBag> delayed_{std::in_place};
    // Touched on the queue's executor only.
    TaskState* holder_ = nullptr;
    bool isTurnOwed_ = false; ///< came while a coroutine held the queue
    Turn turn_{*this};
    std::unique_ptr<Executor> executor_;
};

/// A job that can be cancelled until it starts. Any thread.
class WorkItem {
public:
    explicit WorkItem(std::function<void()> work) : work_(std::move(work)) {}

    void cancel() { isCancelled_.store(true, std::memory_order_release); }
    [[nodiscard]] bool isCancelled() const { return isCancelled_.load(std::memory_order_acquire); }

    /// Runs the work unless cancelled.
    void perform()
    {
        if (!isCancelled()) {
            work_();
        }
    }

private:
    std::function<void()> work_;
    std::atomic<bool> isCancelled_ = false;
};

} // namespace sentrel
