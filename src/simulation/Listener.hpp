#pragma once

#include "ports/Registration.hpp"

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// A callback that may be called on any thread. After `leave` returns it isn't called again, and no call is running on
/// another thread.
template <class... News> class Listener {
public:
    explicit Listener(std::function<void(const News&...)> told) : told_(std::move(told)) {}

    void tell(const News&... news)
    {
        // The mutex is recursive: the callback may make the listener leave.
        const std::lock_guard guard{mutex_};
        if (isListening_) {
            told_(news...);
        }
    }

    void leave()
    {
        const std::lock_guard guard{mutex_};
        isListening_ = false;
    }

private:
    std::recursive_mutex mutex_;
    std::function<void(const News&...)> told_;
    bool isListening_ = true;
};

/// Listeners in the order of their registration. Any thread.
template <class... News> class Listeners {
public:
    using Entry = std::shared_ptr<Listener<News...>>;

    /// Listens until the registration's end.
    [[nodiscard]] ports::RegistrationPtr add(Entry listener)
    {
        const std::lock_guard guard{list_->mutex};
        list_->all.push_back(listener);
        return std::make_unique<Place>(list_, std::move(listener));
    }

    /// The listeners registered now.
    [[nodiscard]] std::vector<Entry> all() const
    {
        const std::lock_guard guard{list_->mutex};
        return list_->all;
    }

private:
    struct List {
        std::mutex mutex;
        std::vector<Entry> all;
    };

    class Place final : public ports::Registration {
    public:
        Place(std::shared_ptr<List> list, Entry listener) : list_(std::move(list)), listener_(std::move(listener)) {}
        ~Place() override
        {
            {
                const std::lock_guard guard{list_->mutex};
                std::erase(list_->all, listener_);
            }
            listener_->leave();
        }

    private:
        std::shared_ptr<List> list_;
        Entry listener_;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

} // namespace sentrel::simulation
