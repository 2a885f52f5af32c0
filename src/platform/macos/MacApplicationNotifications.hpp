#pragma once

#include "platform/ApplicationNotifications.hpp"

namespace sentrel::macos {

/// The application's default notification center. Registrations die on the main thread, too.
class MacApplicationNotifications final : public platform::ApplicationNotifications {
public:
    [[nodiscard]] platform::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;
};

} // namespace sentrel::macos
