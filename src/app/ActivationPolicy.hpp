#pragma once

#include <cstdint>

namespace sentrel {

/// `NSApplicationActivationPolicy`: whether the application has a Dock icon and a menu of its own.
inline constexpr std::int64_t regularActivationPolicy = 0;
inline constexpr std::int64_t accessoryActivationPolicy = 1;

} // namespace sentrel
