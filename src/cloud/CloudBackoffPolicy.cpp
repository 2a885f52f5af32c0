#include "cloud/CloudBackoffPolicy.hpp"

#include "foundation/Fatal.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sentrel {

double CloudBackoffPolicy::recordFailure(std::optional<double> retryAfter, Date now)
{
    if (consecutiveFailures == std::numeric_limits<std::int64_t>::max()) {
        fatalError("cloud backoff: the count of failures overflows");
    }
    const auto exponent = static_cast<double>(consecutiveFailures++);
    const double doubled = std::min(baseDelay * std::exp2(exponent), maxDelay);
    const double delay = std::min(retryAfter.value_or(doubled), maxDelay);
    nextAttemptAllowedAt = now.addingSeconds(delay);
    return delay;
}

double CloudBackoffPolicy::remainingDelay(Date now) const
{
    return nextAttemptAllowedAt ? std::max(nextAttemptAllowedAt->secondsSince(now), 0.0) : 0.0;
}

void CloudBackoffPolicy::resetOnSuccess()
{
    consecutiveFailures = 0;
    nextAttemptAllowedAt.reset();
}

} // namespace sentrel
