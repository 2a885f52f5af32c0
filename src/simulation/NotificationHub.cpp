#include "simulation/NotificationHub.hpp"

#include <memory>
#include <utility>

namespace sentrel::simulation {

ports::RegistrationPtr NotificationHub::observe(const std::string& name, std::function<void()> received)
{
    const std::lock_guard guard{mutex_};
    return observers_[name].add(std::make_shared<Listener<>>(std::move(received)));
}

void NotificationHub::post(std::string_view name)
{
    const std::lock_guard guard{mutex_};
    const auto named = observers_.find(name);
    if (named == observers_.end()) {
        return;
    }
    for (const auto& observer : named->second.all()) {
        sentrel::post(executor_, [observer] { observer->tell(); });
    }
}

} // namespace sentrel::simulation
