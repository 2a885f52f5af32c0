#include "simulation/mac/display/SimulatedWorkspace.hpp"

#include "simulation/Events.hpp"

#include <utility>

namespace sentrel::simulation {

ports::RegistrationPtr SimulatedWorkspace::observe(const std::string& name, std::function<void()> received)
{
    faults_.call("observe");
    return notifications_.observe(name, std::move(received));
}

void SimulatedWorkspace::post(const std::string& name)
{
    journal_.note(events::WorkspaceNotification{name});
    if (!faults_.strikes("notification")) {
        notifications_.post(name);
    }
    if (faults_.strikes("notification-twice")) {
        notifications_.post(name);
    }
}

} // namespace sentrel::simulation
