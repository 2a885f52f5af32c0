#pragma once

#include "platform/HidEventSystem.hpp"

namespace sentrel::macos {

/// The HID event system through IOKit.
class MacHidEventSystem final : public platform::HidEventSystem {
public:
    [[nodiscard]] std::unique_ptr<platform::HidClient> createClient() override;
};

} // namespace sentrel::macos
