#pragma once

#include "ports/WorkspaceNotifications.hpp"

namespace sentrel::mac {

/// The notification center of `NSWorkspace`. Registrations end on the main thread, too.
class MacWorkspaceNotifications final : public ports::WorkspaceNotifications {
public:
    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;
};

} // namespace sentrel::mac
