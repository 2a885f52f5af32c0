#pragma once

#include "foundation/Date.hpp"

#include <string>

namespace sentrel::ports {

enum class CalendarUnit { day, weekOfYear, month, year };

struct DateInterval {
    Date start;
    Date end; ///< the first moment after it
    friend bool operator==(const DateInterval&, const DateInterval&) = default;
};

/// The user's current calendar, time zone and locale (`NSCalendar`, `NSDateFormatter`). Any thread.
class Calendar {
public:
    virtual ~Calendar() = default;

    /// The day, week, month or year that the date lies in, or an empty interval at the date when it lies beyond what
    /// the calendar knows. Weeks start on the locale's first weekday.
    [[nodiscard]] virtual DateInterval interval(CalendarUnit unit, Date date) = 0;

    /// The date so many units later, or earlier for a negative count; beyond what the calendar knows, the date itself.
    [[nodiscard]] virtual Date adding(CalendarUnit unit, int count, Date date) = 0;

    /// The number of the unit: day of the month, week of the year, month from 1, year.
    [[nodiscard]] virtual int component(CalendarUnit unit, Date date) = 0;

    /// The date's month by its wide standalone name in the user's language, for example "March".
    [[nodiscard]] virtual std::string monthName(Date date) = 0;

    enum class Style { none, shortStyle, mediumStyle, longStyle };

    /// The date as the locale writes it.
    [[nodiscard]] virtual std::string formatted(Date date, Style dateStyle, Style timeStyle) = 0;

    /// The date by a pattern ("yyyy-MM-dd") in the locale of this identifier ("en_US_POSIX"), in the user's time zone.
    [[nodiscard]] virtual std::string formatted(Date date, const std::string& pattern, const std::string& locale) = 0;
};

} // namespace sentrel::ports
