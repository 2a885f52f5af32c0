#pragma once

#include "ports/HidEventSystem.hpp"

#include <memory>

// The HID event system through IOKit.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::HidEventSystem> makeHidEventSystem();

} // namespace sentrel::mac
