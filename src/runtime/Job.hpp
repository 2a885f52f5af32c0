#pragma once

#include <cstdint>

namespace sentrel {

class JobList;
class VirtualClock;
class VirtualExecutor;

/// One unit of work. It carries its own links, so that queueing it allocates nothing; it waits in at most one list.
class Job {
public:
    Job() = default;
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    /// Does the work, on the executor that the job was posted to.
    virtual void run() = 0;

    /// Called instead of `run` when the executor is destroyed first: frees the job's resources.
    virtual void drop() {}

protected:
    ~Job() = default;

private:
    friend class JobList;
    friend class VirtualClock;
    friend class VirtualExecutor;
    std::uint64_t order_ = 0; // order of posting; set by a virtual clock
    Job* previous_ = nullptr;
    Job* next_ = nullptr;
    JobList* list_ = nullptr;
};

/// A first-in, first-out list of jobs, linked through the jobs themselves. No lock of its own. In the header, because
/// every job passes through several of these.
class JobList {
public:
    JobList() = default;
    JobList(const JobList&) = delete;
    JobList& operator=(const JobList&) = delete;

    [[nodiscard]] bool empty() const { return first_ == nullptr; }
    [[nodiscard]] const Job* first() const { return first_; }

    void append(Job& job)
    {
        job.previous_ = last_;
        job.next_ = nullptr;
        job.list_ = this;
        (last_ != nullptr ? last_->next_ : first_) = &job;
        last_ = &job;
    }

    /// Takes the oldest job out; null when there is none.
    Job* popFirst()
    {
        Job* const job = first_;
        if (job != nullptr) {
            remove(*job);
        }
        return job;
    }

    /// Takes the job out; false when it doesn't wait here.
    bool remove(Job& job)
    {
        if (job.list_ != this) {
            return false;
        }
        (job.previous_ != nullptr ? job.previous_->next_ : first_) = job.next_;
        (job.next_ != nullptr ? job.next_->previous_ : last_) = job.previous_;
        job.previous_ = job.next_ = nullptr;
        job.list_ = nullptr;
        return true;
    }

private:
    Job* first_ = nullptr;
    Job* last_ = nullptr;
};

} // namespace sentrel
