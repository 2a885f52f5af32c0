#pragma once

#include "ports/StatusBar.hpp"

namespace sentrel::mac {

/// The system's menu bar.
class MacStatusBar final : public ports::StatusBar {
public:
    [[nodiscard]] std::unique_ptr<ports::StatusItem> makeStatusItem() override;
};

} // namespace sentrel::mac
