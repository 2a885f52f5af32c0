#pragma once

#include "ports/DeviceRegistry.hpp"
#include "ports/PowerAssertions.hpp"
#include "ports/PowerSources.hpp"

#include <memory>

// Power, the lid and the rest of the I/O registry through IOKit.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::PowerSources> makePowerSources();
[[nodiscard]] std::unique_ptr<ports::PowerAssertions> makePowerAssertions();
[[nodiscard]] std::unique_ptr<ports::DeviceRegistry> makeDeviceRegistry();

} // namespace sentrel::mac
