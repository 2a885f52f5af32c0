#include "runtime/SerialQueue.hpp"

#include "runtime/Sleep.hpp"

namespace sentrel {

SerialQueue::SerialQueue(Scheduler& scheduler, std::string label, QualityOfService qualityOfService)
    : scheduler_(scheduler), label_(std::move(label)), executor_(scheduler.makeSerialExecutor(label_, qualityOfService))
{
}

SerialQueue::~SerialQueue()
{
    executor_->stop();
    delayed_.reset();
    if (holder_ != nullptr) {
        holder_->drop();
    }
    while (Job* const job = pending_.popFirst()) {
        job->drop();
    }
}

void SerialQueue::post(Job& job)
{
    const std::lock_guard guard{mutex_};
    pending_.append(job);
    if (!isTurnPosted_) {
        isTurnPosted_ = true;
        executor_->post(turn_);
    }
}

bool SerialQueue::withdraw(Job& job)
{
    const std::lock_guard guard{mutex_};
    return pending_.remove(job);
}

void SerialQueue::takeTurn()
{
    if (holder_ != nullptr) {
        isTurnOwed_ = true;
        return;
    }
    Job* job = nullptr;
    {
        const std::lock_guard guard{mutex_};
        job = pending_.popFirst();
        isTurnPosted_ = !pending_.empty();
        if (isTurnPosted_) {
            executor_->post(turn_); // runs after this job, on the same executor
        }
    }
    if (job != nullptr) {
        job->run();
    }
}

void SerialQueue::taskBegan(TaskState& task)
{
    holder_ = &task;
}

void SerialQueue::taskFinished()
{
    holder_ = nullptr;
    if (std::exchange(isTurnOwed_, false)) {
        executor_->post(turn_);
    }
}

void SerialQueue::asyncAfter(Duration delay, const std::shared_ptr<WorkItem>& item)
{
    // On the bare executor: the delay itself does not hold the queue.
    auto later = Task<void>::start(scheduler_, *executor_, *executor_, nullptr, performLater(delay, item));
    const std::lock_guard guard{mutex_};
    delayed_->add(std::move(later));
}

Async<void> SerialQueue::performLater(Duration delay, std::shared_ptr<WorkItem> item)
{
    co_await sleepFor(delay);
    async([item] { item->perform(); });
}

} // namespace sentrel
