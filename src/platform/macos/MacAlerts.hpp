#pragma once

#include "platform/Alerts.hpp"

namespace sentrel::macos {

/// AppKit's alert panels.
class MacAlerts final : public platform::Alerts {
public:
    [[nodiscard]] Async<std::int64_t> runModal(platform::AlertContent content) override;
};

} // namespace sentrel::macos
