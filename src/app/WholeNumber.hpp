#pragma once

#include <algorithm>
#include <cstdint>

namespace sentrel {

/// Truncates for display; saturates at +-9e18; NaN gives 0.
[[nodiscard]] inline std::int64_t wholeNumber(double value)
{
    constexpr double most = 9.0e18;
    return value == value ? static_cast<std::int64_t>(std::clamp(value, -most, most)) : 0;
}

} // namespace sentrel
