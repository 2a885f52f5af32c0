#pragma once

#include "runtime/Time.hpp"

#include <chrono>

namespace sentrel {

/// The time limit of a request to iCloud, unless its caller sets another: a slow or hung cloud must block neither an
/// alarm nor a list.
inline constexpr Duration cloudTimeLimit = std::chrono::seconds{15};

} // namespace sentrel
