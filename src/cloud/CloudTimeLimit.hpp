#pragma once

#include "runtime/Time.hpp"

#include <chrono>

namespace sentrel {

/// The longest wait for an answer of iCloud, unless a call has reason to be patient: a slow or hung cloud holds up
/// neither an alarm nor a list.
inline constexpr Duration cloudTimeLimit = std::chrono::seconds{15};

} // namespace sentrel
