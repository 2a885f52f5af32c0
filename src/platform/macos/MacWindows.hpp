#pragma once

#include "platform/Windows.hpp"

namespace sentrel::macos {

/// Screens and windows of AppKit.
class MacWindows final : public platform::Windows {
public:
    [[nodiscard]] std::vector<platform::Screen> screens() override;
    [[nodiscard]] std::int64_t shieldingLevel() override;
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(const platform::WindowDescription& description) override;
};

} // namespace sentrel::macos
