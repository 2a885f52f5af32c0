#pragma once

#include "ports/Registration.hpp"
#include "runtime/Executor.hpp"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// Named notifications of the simulated system, each delivered on one executor, never inside the call that posts it.
/// Post on any thread; register and unregister on the executor's thread.
class NotificationHub {
public:
    explicit NotificationHub(Executor& executor);

    /// Calls back for each notification of this name, as long as the registration lives.
    [[nodiscard]] ports::RegistrationPtr observe(std::string name, std::function<void()> received);

    /// Notifies the observers that the name has now.
    void post(std::string_view name);

private:
    struct Observer;
    struct Observers;
    class Entry;

    Executor& executor_;
    std::shared_ptr<Observers> observers_;
};

} // namespace sentrel::simulation
