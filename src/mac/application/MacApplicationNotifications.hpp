#pragma once

#include "ports/ApplicationNotifications.hpp"

namespace sentrel::mac {

/// The application's default notification center. Registrations end on the main thread, too.
class MacApplicationNotifications final : public ports::ApplicationNotifications {
public:
    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;
};

} // namespace sentrel::mac
