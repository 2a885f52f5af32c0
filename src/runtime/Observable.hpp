#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace sentrel {

/// Keeps an observer registered until destroyed. May outlive the observed object.
class [[nodiscard]] Observation {
public:
    Observation() = default;

private:
    template <class T> friend class Observable;
    explicit Observation(std::shared_ptr<void> token) : token_(std::move(token)) {}
    std::shared_ptr<void> token_;
};

/// A property of a service. Observers are called at once, on the main thread, and only when the value changes.
template <class T> class Observable {
public:
    explicit Observable(T initial = T{}) : value_(std::move(initial)) {}
    Observable(const Observable&) = delete;

    [[nodiscard]] const T& get() const { return value_; }
    [[nodiscard]] operator const T&() const { return value_; }

    /// Replaces the value and calls the observers, unless the new value is equal to the present one.
    Observable& operator=(T value)
    {
        if (!(value_ == value)) {
            value_ = std::move(value);
            notify();
        }
        return *this;
    }

    /// Registers a callback that receives the new value after each change.
    Observation observe(std::function<void(const T&)> changed)
    {
        auto entry = std::make_shared<Callback>(std::move(changed));
        callbacks_.push_back(entry);
        return Observation{std::move(entry)};
    }

private:
    using Callback = std::function<void(const T&)>;

    void notify()
    {
        std::erase_if(callbacks_, [](const std::weak_ptr<Callback>& callback) { return callback.expired(); });
        // A copy: an observer may register or drop observers.
        const auto callbacks = callbacks_;
        const auto change = ++changes_;
        for (const std::weak_ptr<Callback>& weak : callbacks) {
            if (const auto callback = weak.lock()) {
                (*callback)(value_);
            }
            // An observer changed the value again: every observer has received the newer value already.
            if (changes_ != change) {
                return;
            }
        }
    }

    T value_;
    std::uint64_t changes_ = 0;
    std::vector<std::weak_ptr<Callback>> callbacks_;
};

} // namespace sentrel
