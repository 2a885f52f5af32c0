#pragma once

#include "foundation/Date.hpp"

#include <cstdint>
#include <optional>

namespace sentrel {

/// How many throttling failures in a row a class of cloud request has had, and until when the next must wait. A plain
/// value; its owner changes it on the main thread. Without random jitter: one Mac is one client.
struct CloudBackoffPolicy {
    double baseDelay = 5.0;  ///< seconds after the first failure
    double maxDelay = 300.0; ///< upper bound of any delay, a server's wish included
    std::int64_t consecutiveFailures = 0;
    std::optional<Date> nextAttemptAllowedAt; ///< none means now

    friend bool operator==(const CloudBackoffPolicy&, const CloudBackoffPolicy&) = default;

    /// Notes a failure; `retryAfter` (seconds) replaces the doubling delay. Returns the delay in seconds.
    double recordFailure(std::optional<double> retryAfter, Date now);

    /// Seconds still to wait.
    [[nodiscard]] double remainingDelay(Date now) const;

    void resetOnSuccess();
};

} // namespace sentrel
