#pragma once

#include "cloud/CloudBackoffPolicy.hpp"
#include "runtime/Time.hpp"

#include <algorithm>
#include <chrono>

namespace sentrel {

// How often the presence service asks and tells.

inline constexpr Duration heartbeatInterval = std::chrono::seconds{30};

/// Between two polls for commands: while pushes announce them, and the bounds of the wait while they don't.
inline constexpr Duration pollIntervalWithPushes = std::chrono::seconds{300};
inline constexpr Duration shortestPollInterval = std::chrono::seconds{5};
inline constexpr Duration longestPollInterval = std::chrono::seconds{60};

/// A publication under way holds up one with newer news no longer than this.
inline constexpr Duration longestWaitForPublication = std::chrono::seconds{1};

/// A command of the phone that is older than this, in seconds, is too late to obey.
inline constexpr double longestCommandAge = 120.0;

/// How long the server still wants to be left alone. No policy asks for more than its bound, so that more is the work
/// of a wall clock that was set back.
inline Duration remainingBackoff(const CloudBackoffPolicy& backoff, Date now)
{
    return durationFromSeconds(std::min(backoff.remainingDelay(now), backoff.maxDelay));
}

} // namespace sentrel
