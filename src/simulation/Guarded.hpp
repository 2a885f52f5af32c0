#pragma once

#include <mutex>
#include <utility>

namespace sentrel::simulation {

/// A value that can be reached only under its lock. `guarded->member` holds the lock to the end of the statement, so a
/// statement uses it once; `lock()` holds it as long as the result lives. Any thread.
template <class Value> class Guarded {
    template <class Seen> class Access {
    public:
        Access(Seen& value, std::mutex& mutex) : guard_(mutex), value_(value) {}
        Access(const Access&) = delete;
        Access& operator=(const Access&) = delete;

        Seen* operator->() const { return &value_; }
        Seen& operator*() const { return value_; }

    private:
        std::lock_guard<std::mutex> guard_;
        Seen& value_;
    };

public:
    Guarded() = default;
    explicit Guarded(Value value) : value_(std::move(value)) {}

    [[nodiscard]] Access<Value> lock() { return {value_, mutex_}; }
    [[nodiscard]] Access<const Value> lock() const { return {value_, mutex_}; }
    Access<Value> operator->() { return lock(); }
    Access<const Value> operator->() const { return lock(); }

private:
    mutable std::mutex mutex_;
    Value value_;
};

} // namespace sentrel::simulation
