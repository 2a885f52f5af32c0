#pragma once

#include "foundation/Date.hpp"

#include <string>

namespace sentrel::ports {

enum class CalendarUnit { day, weekOfYear, month, year };

struct DateInterval {
    Date start;
    Date end; ///< exclusive
    friend bool operator==(const DateInterval&, const DateInterval&) = default;
};

/// The user's current calendar, time zone and locale (`NSCalendar`, `NSDateFormatter`). Any thread.
class Calendar {
public:
    virtual ~Calendar() = default;

    /// The day, week, month or year that contains the date, or an empty interval at the date if the calendar can't
    /// represent it. Weeks start on the locale's first weekday.
    [[nodiscard]] virtual DateInterval interval(CalendarUnit unit, Date date) = 0;

    /// The date `count` units later (earlier if negative); the date itself if the calendar can't represent the result.
    [[nodiscard]] virtual Date adding(CalendarUnit unit, int count, Date date) = 0;

    /// The number of the unit: day of the month, week of the year, month from 1, year.
    [[nodiscard]] virtual int component(CalendarUnit unit, Date date) = 0;

    /// The wide standalone name of the date's month in the user's language, for example "March".
    [[nodiscard]] virtual std::string monthName(Date date) = 0;

    /// `NSDateFormatterStyle`.
    enum class Style { none, shortStyle, mediumStyle, longStyle };

    /// The date as the locale writes it.
    [[nodiscard]] virtual std::string formatted(Date date, Style dateStyle, Style timeStyle) = 0;

    /// The date formatted by a pattern ("yyyy-MM-dd") in a locale ("en_US_POSIX") and the user's time zone.
    [[nodiscard]] virtual std::string formatted(Date date, const std::string& pattern, const std::string& locale) = 0;
};

} // namespace sentrel::ports
