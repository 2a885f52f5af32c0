#include "mac/scheduling/DispatchExecutor.hpp"

#include <condition_variable>
#include <mutex>
#include <utility>

#include <dispatch/dispatch.h>
#include <os/log.h>
#include <pthread.h>

namespace sentrel::mac {

namespace {

qos_class_t classOf(QualityOfService qualityOfService)
{
    switch (qualityOfService) {
    case QualityOfService::utility:
        return QOS_CLASS_UTILITY;
    case QualityOfService::standard:
        return QOS_CLASS_DEFAULT;
    case QualityOfService::userInitiated:
        return QOS_CLASS_USER_INITIATED;
    case QualityOfService::userInteractive:
        return QOS_CLASS_USER_INTERACTIVE;
    }
    return QOS_CLASS_DEFAULT;
}

} // namespace

/// The waiting jobs, and the turns that were sent to the queue for them.
class DispatchExecutor::Jobs : public std::enable_shared_from_this<Jobs> {
public:
    explicit Jobs(dispatch_queue_t queue) : queue_(queue) {}

    void post(Job& job)
    {
        const std::shared_ptr<Jobs> self = shared_from_this();
        // Sent under the lock: a job that runs before this returns may destroy the executor's owner.
        const std::lock_guard guard{mutex_};
        waiting_.append(job);
        if (!isStopped_) {
            dispatch_async(queue_, ^{
                self->takeTurn();
            });
        }
    }

    bool withdraw(Job& job)
    {
        const std::lock_guard guard{mutex_};
        if (!waiting_.remove(job)) {
            return false;
        }
        // One turn is now surplus. If it ran the next job, that job would overtake work that the system has queued
        // between the two.
        ++spareTurns_;
        return true;
    }

    void stop()
    {
        std::unique_lock guard{mutex_};
        isStopped_ = true;
        const int own = isCurrent() ? 1 : 0;
        finished_.wait(guard, [&] { return running_ == own; });
    }

    void dropWaiting()
    {
        while (Job* const job = take()) {
            job->drop();
        }
    }

    [[nodiscard]] bool isCurrent() const { return current == this; }
    [[nodiscard]] dispatch_queue_t queue() const { return queue_; }

private:
    void takeTurn()
    {
        Job* const job = beginTurn();
        if (job == nullptr) {
            return;
        }
        const Jobs* const outer = std::exchange(current, this);
        @autoreleasepool {
            // An exception that a framework raised must not end the alarm's process.
            try {
                job->run();
            } catch (...) {
                os_log_error(OS_LOG_DEFAULT, "a job on %{public}s threw", dispatch_queue_get_label(queue_));
            }
        }
        current = outer;
        const std::lock_guard guard{mutex_};
        --running_;
        finished_.notify_all();
    }

    /// The job whose turn it is; null when there is none.
    Job* beginTurn()
    {
        const std::lock_guard guard{mutex_};
        if (isStopped_) {
            return nullptr;
        }
        if (spareTurns_ > 0) {
            --spareTurns_;
            return nullptr;
        }
        ++running_;
        return waiting_.popFirst();
    }

    Job* take()
    {
        const std::lock_guard guard{mutex_};
        return waiting_.popFirst();
    }

    static thread_local const Jobs* current;
    const dispatch_queue_t queue_;
    std::mutex mutex_;
    std::condition_variable finished_;
    JobList waiting_;
    int spareTurns_ = 0;
    int running_ = 0;
    bool isStopped_ = false;
};

thread_local const DispatchExecutor::Jobs* DispatchExecutor::Jobs::current = nullptr;

std::unique_ptr<DispatchExecutor> DispatchExecutor::makeMain()
{
    auto jobs = std::make_shared<Jobs>(dispatch_get_main_queue());
    return std::unique_ptr<DispatchExecutor>{new DispatchExecutor{Kind::main, std::move(jobs)}};
}

std::unique_ptr<DispatchExecutor> DispatchExecutor::makeGlobal(QualityOfService qualityOfService)
{
    auto jobs = std::make_shared<Jobs>(dispatch_get_global_queue(classOf(qualityOfService), 0));
    return std::unique_ptr<DispatchExecutor>{new DispatchExecutor{Kind::global, std::move(jobs)}};
}

std::unique_ptr<DispatchExecutor> DispatchExecutor::makeSerial(const std::string& label,
                                                               QualityOfService qualityOfService)
{
    const dispatch_queue_attr_t attributes =
        dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, classOf(qualityOfService), 0);
    auto jobs = std::make_shared<Jobs>(dispatch_queue_create(label.c_str(), attributes));
    return std::unique_ptr<DispatchExecutor>{new DispatchExecutor{Kind::serial, std::move(jobs)}};
}

DispatchExecutor::DispatchExecutor(Kind kind, std::shared_ptr<Jobs> jobs) : kind_(kind), jobs_(std::move(jobs))
{
    if (kind_ == Kind::serial) {
        // The key is the address of the jobs, which no other queue uses.
        dispatch_queue_set_specific(jobs_->queue(), jobs_.get(), jobs_.get(), nullptr);
    }
}

DispatchExecutor::~DispatchExecutor()
{
    stop();
    jobs_->dropWaiting();
}

void DispatchExecutor::post(Job& job)
{
    jobs_->post(job);
}

bool DispatchExecutor::withdraw(Job& job)
{
    return jobs_->withdraw(job);
}

void DispatchExecutor::stop()
{
    jobs_->stop();
    if (kind_ == Kind::serial && !isCurrent()) {
        // The system's own calls on the queue (HID events) are no jobs; one may still be in progress.
        dispatch_sync(jobs_->queue(), ^{
                      });
    }
}

bool DispatchExecutor::isCurrent() const
{
    switch (kind_) {
    case Kind::main:
        return pthread_main_np() != 0;
    case Kind::serial:
        // True in the system's own calls on the queue, too.
        return dispatch_get_specific(jobs_.get()) == jobs_.get();
    case Kind::global:
        break;
    }
    return jobs_->isCurrent();
}

void* DispatchExecutor::nativeQueue()
{
    return (__bridge void*)jobs_->queue();
}

} // namespace sentrel::mac
