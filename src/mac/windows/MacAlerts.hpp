#pragma once

#include "ports/Alerts.hpp"

namespace sentrel::mac {

/// AppKit's alert panels.
class MacAlerts final : public ports::Alerts {
public:
    [[nodiscard]] Async<std::int64_t> runModal(ports::AlertContent content) override;
};

} // namespace sentrel::mac
