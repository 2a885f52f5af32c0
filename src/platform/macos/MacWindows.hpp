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

/// Whether a window of this application shields the screen. Then nothing may take it away, or act behind it, but what
/// the window itself offers.
[[nodiscard]] bool isScreenShielded();

} // namespace sentrel::macos
