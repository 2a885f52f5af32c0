#include "runtime/TaskRegistry.hpp"

#include "runtime/TaskState.hpp"

namespace sentrel {

void TaskRegistry::add(TaskState& task)
{
    const std::lock_guard guard{mutex_};
    task.registryPrevious_ = nullptr;
    task.registryNext_ = first_;
    if (first_ != nullptr) {
        first_->registryPrevious_ = &task;
    }
    first_ = &task;
}

void TaskRegistry::remove(TaskState& task)
{
    const std::lock_guard guard{mutex_};
    (task.registryPrevious_ != nullptr ? task.registryPrevious_->registryNext_ : first_) = task.registryNext_;
    if (task.registryNext_ != nullptr) {
        task.registryNext_->registryPrevious_ = task.registryPrevious_;
    }
    task.registryPrevious_ = task.registryNext_ = nullptr;
}

TaskState* TaskRegistry::first()
{
    const std::lock_guard guard{mutex_};
    return first_;
}

void TaskRegistry::endAll()
{
    // One at a time: freeing a frame may drop the last handle of another task, never start one.
    while (TaskState* const task = first()) {
        task->drop();
    }
}

} // namespace sentrel
