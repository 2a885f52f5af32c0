#include "simulation/HangingCalls.hpp"

#include "runtime/Latch.hpp"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Unwinds the stack of a hanging call. Not a `std::exception`, so that no handler takes it for an ordinary failure.
struct CallEnded {};

} // namespace

/// A thread for one job at a time. Either it runs or the thread that handed it the job does, never both.
class HangingCalls::Worker {
public:
    Worker() : thread_([this] { work(); }) {}
    ~Worker()
    {
        hand(State::over);
        thread_.join();
    }
    Worker(const Worker&) = delete;

    /// The worker of the calling thread; null on other threads.
    static Worker* current() { return ownWorker; }

    /// False when the job hangs. Throws what the job throws.
    bool run(Job& job)
    {
        job_ = &job;
        return isOverAfter(handAndWait(State::running));
    }

    /// On the worker's own thread: leaves the job until `goOn` or `end`. The latch that it waits for, if any, tells
    /// when it can go on.
    void leave(Latch* latch = nullptr)
    {
        std::unique_lock guard{mutex_};
        latch_ = latch;
        state_ = State::left;
        changed_.notify_all();
        changed_.wait(guard, [this] { return state_ != State::left; });
        latch_ = nullptr;
    }

    [[nodiscard]] bool isWaiting() const { return latch_ != nullptr; }
    [[nodiscard]] bool canGoOn() const { return latch_ != nullptr && latch_->isOpen(); }

    /// Lets the job that waits go on. False when it hangs, or waits anew. Throws what the job throws.
    bool goOn() { return isOverAfter(handAndWait(State::running)); }

    /// Lets the job that was left run to its end, as a part of a process that ends.
    void end()
    {
        handAndWait(State::running);
        error_ = nullptr;
    }

private:
    enum class State { idle, running, left, over };

    void hand(State state)
    {
        const std::lock_guard guard{mutex_};
        state_ = state;
        changed_.notify_all();
    }

    State handAndWait(State state)
    {
        hand(state);
        std::unique_lock guard{mutex_};
        changed_.wait(guard, [this] { return state_ != State::running; });
        return state_;
    }

    bool isOverAfter(State state)
    {
        if (error_) {
            std::rethrow_exception(std::exchange(error_, nullptr));
        }
        return state == State::idle;
    }

    void work()
    {
        ownWorker = this;
        std::unique_lock guard{mutex_};
        for (;;) {
            changed_.wait(guard, [this] { return state_ != State::idle; });
            if (state_ == State::over) {
                return;
            }
            guard.unlock();
            try {
                job_->run();
            } catch (...) {
                error_ = std::current_exception();
            }
            guard.lock();
            state_ = State::idle;
            changed_.notify_all();
        }
    }

    static thread_local Worker* ownWorker;
    std::mutex mutex_;
    std::condition_variable changed_;
    State state_ = State::idle;
    Job* job_ = nullptr;
    Latch* latch_ = nullptr; // that the job waits for
    std::exception_ptr error_;
    std::thread thread_;
};

thread_local HangingCalls::Worker* HangingCalls::Worker::ownWorker = nullptr;

HangingCalls::HangingCalls(VirtualClock& clock, const VirtualScheduler& process) : clock_(clock), process_(process)
{
    updateIdleness();
    clock_.setJobRunner(this);
}

HangingCalls::~HangingCalls()
{
    end();
    clock_.setJobRunner(nullptr);
}

void HangingCalls::prepare()
{
    isPrepared_ = true;
    updateIdleness();
}

void HangingCalls::rest()
{
    isPrepared_ = false;
    updateIdleness();
}

void HangingCalls::hang()
{
    if (Worker::current() == nullptr) {
        throw std::logic_error{"a call hangs without preparation"};
    }
    Worker::current()->leave();
    throw CallEnded{};
}

void HangingCalls::end()
{
    isEnding_ = true;
    for (auto& worker : std::exchange(left_, {})) {
        worker->end();
        idle_.push_back(std::move(worker));
    }
    isEnding_ = false;
    updateIdleness();
}

bool HangingCalls::run(Job& job)
{
    if (!isPrepared_) {
        job.run();
        return true;
    }
    // Not the calling thread, which is left behind if the job hangs; a job that blocks runs others on further threads.
    auto worker = idle_.empty() ? std::make_unique<Worker>() : std::move(idle_.back());
    if (!idle_.empty()) {
        idle_.pop_back();
    }
    Worker& runs = *worker;
    return finish(std::move(worker), [&] { return runs.run(job); });
}

bool HangingCalls::isAnyWaiting() const
{
    return std::ranges::any_of(left_, [](const auto& worker) { return worker->isWaiting(); });
}

bool HangingCalls::waitApart(Latch& latch)
{
    Worker* const worker = Worker::current();
    if (worker == nullptr) {
        return false;
    }
    worker->leave(&latch);
    return true;
}

JobRunner::Resumed HangingCalls::resume()
{
    const auto ready = std::ranges::find_if(left_, [](const auto& worker) { return worker->canGoOn(); });
    if (ready == left_.end()) {
        return Resumed::none;
    }
    auto worker = std::move(*ready);
    left_.erase(ready);
    Worker& goesOn = *worker;
    return finish(std::move(worker), [&] { return goesOn.goOn(); }) ? Resumed::untilItsEnd : Resumed::untilItBlocked;
}

/// Lets the worker do its part, and keeps it where it belongs then. False when its job is not over.
template <class Part> bool HangingCalls::finish(std::unique_ptr<Worker> worker, Part part)
{
    std::exception_ptr error;
    bool isOver = true;
    try {
        isOver = part();
    } catch (...) {
        error = std::current_exception();
    }
    const bool hangs = !isOver && !worker->isWaiting();
    (isOver ? idle_ : left_).push_back(std::move(worker));
    updateIdleness();
    if (hangs && hasHung_) {
        hasHung_();
    }
    if (error) {
        std::rethrow_exception(error);
    }
    return isOver;
}

} // namespace sentrel::simulation
