#include "runtime/ThreadScheduler.hpp"

#include "runtime/Latch.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sentrel {

/// A list of jobs and the threads that run them. The main executor has no thread of its own: it belongs to the thread
/// that makes it, which calls `work`; code outside any job counts as running on it there.
class ThreadScheduler::ThreadExecutor final : public Executor {
public:
    explicit ThreadExecutor(std::size_t threadCount)
        : owner_(threadCount == 0 ? std::this_thread::get_id() : std::thread::id{})
    {
        for (std::size_t i = 0; i < threadCount; ++i) {
            threads_.emplace_back([this] { work(); });
        }
    }
    ~ThreadExecutor() override
    {
        stop();
        while (Job* const job = jobs_.popFirst()) {
            job->drop();
        }
    }

    void post(Job& job) override
    {
        // Notified under the lock: once it is released, the job may end and this executor be destroyed.
        const std::lock_guard guard{mutex_};
        jobs_.append(job);
        changed_.notify_one();
    }

    bool withdraw(Job& job) override
    {
        const std::lock_guard guard{mutex_};
        return jobs_.remove(job);
    }

    void stop() override
    {
        interrupt();
        for (std::thread& thread : threads_) {
            thread.join();
        }
        threads_.clear();
    }

    [[nodiscard]] bool isCurrent() const override
    {
        return current == this || (current == nullptr && owner_ == std::this_thread::get_id());
    }

    /// Runs jobs until `interrupt`.
    void work()
    {
        const auto* const outer = std::exchange(current, this);
        std::unique_lock guard{mutex_};
        for (;;) {
            changed_.wait(guard, [this] { return isStopped_ || !jobs_.empty(); });
            if (isStopped_) {
                break;
            }
            Job& job = *jobs_.popFirst();
            guard.unlock();
            job.run();
            guard.lock();
        }
        current = outer;
    }

    void interrupt()
    {
        const std::lock_guard guard{mutex_};
        isStopped_ = true;
        changed_.notify_all();
    }

    /// Lets `work` run again after `interrupt`.
    void resume()
    {
        const std::lock_guard guard{mutex_};
        isStopped_ = false;
    }

private:
    static thread_local const ThreadExecutor* current;
    const std::thread::id owner_; ///< the main thread; no thread on other executors
    std::mutex mutex_;
    std::condition_variable changed_;
    JobList jobs_;
    bool isStopped_ = false;
    std::vector<std::thread> threads_;
};

thread_local const ThreadScheduler::ThreadExecutor* ThreadScheduler::ThreadExecutor::current = nullptr;

/// The thread that sleeps until the next deadline.
class ThreadScheduler::TimerThread {
public:
    TimerThread() : thread_([this] { work(); }) {}
    ~TimerThread()
    {
        {
            const std::lock_guard guard{mutex_};
            isStopped_ = true;
            changed_.notify_all();
        }
        thread_.join();
    }

    void start(Timer& timer, Instant deadline)
    {
        const std::lock_guard guard{mutex_};
        timers_.add(timer, deadline, armed_++);
        if (timers_.earliest() == deadline) {
            changed_.notify_all();
        }
    }

    bool cancel(Timer& timer)
    {
        const std::lock_guard guard{mutex_};
        return timers_.remove(timer);
    }

    /// The steady clock as the continuous clock. On Linux it stops while the machine is suspended; machines that run
    /// the simulated MacBook are not.
    static Instant now() { return Instant{std::chrono::steady_clock::now().time_since_epoch()}; }

private:
    void work()
    {
        std::unique_lock guard{mutex_};
        while (!isStopped_) {
            const auto deadline = timers_.earliest();
            if (!deadline) {
                changed_.wait(guard);
            } else if (*deadline <= now()) {
                timers_.fireEarliest();
            } else {
                changed_.wait_until(guard, std::chrono::steady_clock::time_point{deadline->time_since_epoch()});
            }
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    TimerList timers_;
    std::uint64_t armed_ = 0;
    bool isStopped_ = false;
    std::thread thread_;
};

namespace {

/// Threads for detached work: enough to derive a key while a directory is read.
constexpr std::size_t globalThreadCount = 2;

} // namespace

ThreadScheduler::ThreadScheduler()
    : main_(std::make_unique<ThreadExecutor>(0)),
      global_(std::make_unique<ThreadExecutor>(globalThreadCount)),
      timers_(std::make_unique<TimerThread>())
{
}

ThreadScheduler::~ThreadScheduler()
{
    global_->stop();
    tasks().endAll();
    timers_.reset();
}

void ThreadScheduler::runMain()
{
    main_->resume();
    main_->work();
}

void ThreadScheduler::stopMain()
{
    main_->interrupt();
}

Instant ThreadScheduler::now() const
{
    return TimerThread::now();
}

Executor& ThreadScheduler::mainExecutor()
{
    return *main_;
}

Executor& ThreadScheduler::globalExecutor(QualityOfService /*qualityOfService*/)
{
    return *global_;
}

std::unique_ptr<Executor> ThreadScheduler::makeSerialExecutor(const std::string& /*label*/,
                                                              QualityOfService /*qualityOfService*/)
{
    return std::make_unique<ThreadExecutor>(1);
}

void ThreadScheduler::startTimer(Timer& timer, Instant deadline)
{
    timers_->start(timer, deadline);
}

bool ThreadScheduler::cancelTimer(Timer& timer)
{
    return timers_->cancel(timer);
}

void ThreadScheduler::blockUntil(Latch& latch)
{
    latch.wait();
}

} // namespace sentrel
