#pragma once

#include <chrono>

namespace sentrel {

/// A span on the continuous clock.
using Duration = std::chrono::nanoseconds;

/// The continuous clock: monotonic, and running on while the machine sleeps. Only a `Scheduler` reads it.
struct ContinuousClock {
    using rep = Duration::rep;
    using period = Duration::period;
    using duration = Duration;
    using time_point = std::chrono::time_point<ContinuousClock>;
    static constexpr bool is_steady = true;
};

/// A point on the continuous clock; its zero has no meaning of its own.
using Instant = ContinuousClock::time_point;

/// Converts seconds (a stored setting) to a span. Negative values and NaN give zero; more than 100 years give 100
/// years.
Duration durationFromSeconds(double seconds);

/// A span as seconds.
constexpr double toSeconds(Duration span)
{
    return std::chrono::duration<double>(span).count();
}

} // namespace sentrel
