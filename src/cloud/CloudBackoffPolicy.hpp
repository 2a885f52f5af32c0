#pragma once

#include "foundation/Date.hpp"

#include <cstdint>
#include <optional>

namespace sentrel {

/// The backoff of one class of cloud requests: failures in a row, and the earliest time of the next request. A plain
/// value; its owner changes it on the main thread. Without random jitter: one Mac is one client.
struct CloudBackoffPolicy {
    double baseDelay = 5.0;  ///< seconds to wait after the first failure
    double maxDelay = 300.0; ///< seconds; bounds every delay, including the server's
    std::int64_t consecutiveFailures = 0;
    std::optional<Date> nextAttemptAllowedAt; ///< none means now

    friend bool operator==(const CloudBackoffPolicy&, const CloudBackoffPolicy&) = default;

    /// Records a failure; `retryAfter` (seconds) replaces the doubling delay. Returns the delay in seconds.
    double recordFailure(std::optional<double> retryAfter, Date now);

    /// Seconds still to wait.
    [[nodiscard]] double remainingDelay(Date now) const;

    void resetOnSuccess();
};

} // namespace sentrel
