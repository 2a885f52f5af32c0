#include "simulation/NotificationHub.hpp"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace sentrel::simulation {

struct NotificationHub::Observer {
    std::string name;
    std::function<void()> received;
    std::atomic<bool> isRegistered = true;
};

struct NotificationHub::Observers {
    std::mutex mutex;
    std::vector<std::shared_ptr<Observer>> all;
};

/// A registration. Its end marks the observer, so that notifications under way are dropped.
class NotificationHub::Entry final : public ports::Registration {
public:
    Entry(std::shared_ptr<Observers> observers, std::shared_ptr<Observer> observer)
        : observers_(std::move(observers)), observer_(std::move(observer))
    {
    }

    ~Entry() override
    {
        observer_->isRegistered = false;
        const std::lock_guard guard{observers_->mutex};
        std::erase(observers_->all, observer_);
    }

private:
    std::shared_ptr<Observers> observers_;
    std::shared_ptr<Observer> observer_;
};

NotificationHub::NotificationHub(Executor& executor) : executor_(executor), observers_(std::make_shared<Observers>())
{
}

ports::RegistrationPtr NotificationHub::observe(std::string name, std::function<void()> received)
{
    auto observer = std::make_shared<Observer>();
    observer->name = std::move(name);
    observer->received = std::move(received);
    {
        const std::lock_guard guard{observers_->mutex};
        observers_->all.push_back(observer);
    }
    return std::make_unique<Entry>(observers_, std::move(observer));
}

void NotificationHub::post(std::string_view name)
{
    const std::lock_guard guard{observers_->mutex};
    for (const auto& observer : observers_->all) {
        if (observer->name != name) {
            continue;
        }
        sentrel::post(executor_, [observer] {
            if (observer->isRegistered) {
                observer->received();
            }
        });
    }
}

} // namespace sentrel::simulation
