#pragma once

#include "platform/StatusBar.hpp"

namespace sentrel::macos {

/// The system's menu bar.
class MacStatusBar final : public platform::StatusBar {
public:
    [[nodiscard]] std::unique_ptr<platform::StatusItem> makeStatusItem() override;
};

} // namespace sentrel::macos
