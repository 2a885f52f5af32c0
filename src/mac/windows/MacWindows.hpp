#pragma once

#include "ports/Windows.hpp"

namespace sentrel::mac {

/// Screens and windows of AppKit.
class MacWindows final : public ports::Windows {
public:
    [[nodiscard]] std::vector<ports::Screen> screens() override;
    [[nodiscard]] std::int64_t shieldingLevel() override;
    [[nodiscard]] std::unique_ptr<ports::Window> makeWindow(const ports::WindowDescription& description) override;
};

/// Whether a window of this application shields the screen. Then only the window's own controls may remove it or act
/// behind it.
[[nodiscard]] bool isScreenShielded();

} // namespace sentrel::mac
