#pragma once

#include "ports/Registration.hpp"

#include <functional>
#include <string>

namespace sentrel::ports {

/// The notification center of the shared workspace. Main thread.
class WorkspaceNotifications {
public:
    virtual ~WorkspaceNotifications() = default;

    /// Calls back on the main queue for each notification of this name.
    [[nodiscard]] virtual RegistrationPtr observe(const std::string& name, std::function<void()> received) = 0;
};

} // namespace sentrel::ports
