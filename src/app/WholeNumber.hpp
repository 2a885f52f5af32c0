#pragma once

#include <algorithm>
#include <cstdint>

namespace sentrel {

/// The whole part of a number that is shown as a whole one; of what no such number can hold, the nearest.
[[nodiscard]] inline std::int64_t wholeNumber(double value)
{
    constexpr double most = 9.0e18;
    return value == value ? static_cast<std::int64_t>(std::clamp(value, -most, most)) : 0;
}

} // namespace sentrel
