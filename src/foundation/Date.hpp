#pragma once

#include <compare>

namespace sentrel {

/// A point of wall-clock time: seconds since 2001-01-01 00:00:00 UTC, as the stored JSON has it.
struct Date {
    double secondsSinceReferenceDate = 0.0;

    friend constexpr bool operator==(const Date&, const Date&) = default;
    friend constexpr auto operator<=>(const Date&, const Date&) = default;

    /// Seconds from the other date to this one.
    [[nodiscard]] constexpr double secondsSince(Date other) const
    {
        return secondsSinceReferenceDate - other.secondsSinceReferenceDate;
    }
    [[nodiscard]] constexpr Date addingSeconds(double seconds) const { return {secondsSinceReferenceDate + seconds}; }

    /// Seconds from 1970-01-01 to 2001-01-01 (UTC).
    static constexpr double secondsFrom1970To2001 = 978307200.0;
};

} // namespace sentrel
