#pragma once

#include <condition_variable>
#include <mutex>

namespace sentrel {

/// A gate that opens once. Wait for it with `Scheduler::blockUntil`.
class Latch {
public:
    /// Opens the gate and wakes all threads blocked on it. Any thread.
    void open()
    {
        // Notified under the lock: the waiter may destroy the latch as soon as it sees it open.
        const std::lock_guard guard{mutex_};
        isOpen_ = true;
        opened_.notify_all();
    }

    [[nodiscard]] bool isOpen()
    {
        const std::lock_guard guard{mutex_};
        return isOpen_;
    }

    /// Blocks the calling thread. Only a scheduler that runs on threads calls this.
    void wait()
    {
        std::unique_lock guard{mutex_};
        opened_.wait(guard, [this] { return isOpen_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable opened_;
    bool isOpen_ = false;
};

} // namespace sentrel
