#pragma once

#include "ports/Registration.hpp"

#include <functional>
#include <string>

namespace sentrel::ports {

/// The application's default notification center. Main thread.
class ApplicationNotifications {
public:
    virtual ~ApplicationNotifications() = default;

    /// Calls back on the main queue for each notification of this name.
    [[nodiscard]] virtual RegistrationPtr observe(const std::string& name, std::function<void()> received) = 0;
};

} // namespace sentrel::ports
