#pragma once

#include <mutex>

namespace sentrel {

class TaskState;

/// The unfinished tasks of one scheduler, so that its destructor can free those that still wait. Any thread.
class TaskRegistry {
public:
    TaskRegistry() = default;
    TaskRegistry(const TaskRegistry&) = delete;
    TaskRegistry& operator=(const TaskRegistry&) = delete;

    void add(TaskState& task);
    void remove(TaskState& task);

    /// Ends every task where it waits; none of their code runs again. No executor may be running.
    void endAll();

private:
    [[nodiscard]] TaskState* first();

    std::mutex mutex_;
    TaskState* first_ = nullptr;
};

} // namespace sentrel
