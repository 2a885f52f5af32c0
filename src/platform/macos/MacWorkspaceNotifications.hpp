#pragma once

#include "platform/WorkspaceNotifications.hpp"

namespace sentrel::macos {

/// The notification center of `NSWorkspace`. Registrations die on the main thread, too.
class MacWorkspaceNotifications final : public platform::WorkspaceNotifications {
public:
    [[nodiscard]] platform::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;
};

} // namespace sentrel::macos
