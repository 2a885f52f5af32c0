#pragma once

#include "runtime/Semaphore.hpp"

#include <mutex>
#include <optional>
#include <utility>

namespace sentrel {

/// An answer from another thread that may come late, twice or never; the first counts. Shared by its giver and its
/// waiter. Any thread.
template <class T> class Answer {
public:
    void give(T value)
    {
        {
            const std::lock_guard guard{mutex_};
            if (value_) {
                return;
            }
            value_.emplace(std::move(value));
        }
        given_.signal();
    }

    /// Signalled once, when the answer has come.
    [[nodiscard]] Semaphore& given() { return given_; }

    [[nodiscard]] bool isGiven()
    {
        const std::lock_guard guard{mutex_};
        return value_.has_value();
    }

    /// Moves the answer out. Call once, after it has come.
    T take()
    {
        const std::lock_guard guard{mutex_};
        return std::move(*value_);
    }

private:
    std::mutex mutex_;
    std::optional<T> value_;
    Semaphore given_;
};

} // namespace sentrel
