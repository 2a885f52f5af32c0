#pragma once

#include "ports/HidEventSystem.hpp"

namespace sentrel::mac {

/// The HID event system through IOKit.
class MacHidEventSystem final : public ports::HidEventSystem {
public:
    [[nodiscard]] std::unique_ptr<ports::HidClient> createClient() override;
};

} // namespace sentrel::mac
