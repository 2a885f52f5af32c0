#pragma once

#include "ports/Registration.hpp"
#include "runtime/Executor.hpp"
#include "simulation/Listener.hpp"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// Named notifications of the simulated system, each delivered on one executor, never inside the call that posts it.
/// Post on any thread; register and unregister on the executor's thread.
class NotificationHub {
public:
    explicit NotificationHub(Executor& executor) : executor_(executor) {}

    /// Calls back for each notification of this name, as long as the registration lives.
    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received);

    /// Notifies the observers that the name has now.
    void post(std::string_view name);

private:
    Executor& executor_;
    std::mutex mutex_;
    std::map<std::string, Listeners<>, std::less<>> observers_;
};

} // namespace sentrel::simulation
