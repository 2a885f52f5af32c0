#include "runtime/Job.hpp"

namespace sentrel {

void JobList::append(Job& job)
{
    job.previous_ = last_;
    job.next_ = nullptr;
    job.list_ = this;
    if (last_ != nullptr) {
        last_->next_ = &job;
    } else {
        first_ = &job;
    }
    last_ = &job;
}

Job* JobList::popFirst()
{
    Job* const job = first_;
    if (job != nullptr) {
        remove(*job);
    }
    return job;
}

bool JobList::remove(Job& job)
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

} // namespace sentrel
