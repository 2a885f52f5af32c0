#pragma once

#include "runtime/Time.hpp"

#include <chrono>

namespace sentrel {

// Timing of the presence service.

inline constexpr Duration heartbeatInterval = std::chrono::seconds{30};

/// Wait between two polls for commands while pushes work; the next two bound it otherwise.
inline constexpr Duration pollIntervalWithPushes = std::chrono::seconds{300};
inline constexpr Duration shortestPollInterval = std::chrono::seconds{5};
inline constexpr Duration longestPollInterval = std::chrono::seconds{60};

/// A publication under way delays a newer one no longer than this.
inline constexpr Duration longestWaitForPublication = std::chrono::seconds{1};

/// Commands of the phone older than this, in seconds, are ignored.
inline constexpr double longestCommandAge = 120.0;

} // namespace sentrel
