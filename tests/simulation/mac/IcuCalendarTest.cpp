#include "simulation/mac/language/IcuCalendar.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ports::CalendarUnit;
using Style = ports::Calendar::Style;

constexpr Date march{1772719629 - Date::secondsFrom1970To2001}; // 2026-03-05 14:07:09 UTC

std::string text(IcuCalendar& calendar, Date date)
{
    return calendar.formatted(date, "yyyy-MM-dd HH:mm", "en_US_POSIX");
}

std::string unitOf(IcuCalendar& calendar, CalendarUnit unit, Date date)
{
    const auto interval = calendar.interval(unit, date);
    return text(calendar, interval.start) + " to " + text(calendar, interval.end);
}

TEST(IcuCalendar, UnitsBeginWhereTheLocaleAndTheZoneSay)
{
    struct Case {
        const char* locale;
        const char* zone;
        double unixTime;
        CalendarUnit unit;
        const char* expected;
    };
    const Case cases[] = {
        {"en_US", "UTC", 1772719629, CalendarUnit::day, "2026-03-05 00:00 to 2026-03-06 00:00"},
        {"en_US", "UTC", 1772719629, CalendarUnit::weekOfYear, "2026-03-01 00:00 to 2026-03-08 00:00"},
        {"de_AT", "Europe/Vienna", 1772719629, CalendarUnit::weekOfYear, "2026-03-02 00:00 to 2026-03-09 00:00"},
        {"de_AT", "Europe/Vienna", 1772719629, CalendarUnit::month, "2026-03-01 00:00 to 2026-04-01 00:00"},
        {"fa_IR", "Asia/Tehran", 1772719629, CalendarUnit::month, "2026-02-20 00:00 to 2026-03-21 00:00"},
        {"fa_IR", "Asia/Tehran", 1772719629, CalendarUnit::year, "2025-03-21 00:00 to 2026-03-21 00:00"},
        // Midnight was skipped, and happened twice, and a whole day was left out.
        {"pt_BR", "America/Sao_Paulo", 1541350000, CalendarUnit::day, "2018-11-04 01:00 to 2018-11-05 00:00"},
        {"es_CU", "America/Havana", 1730610000, CalendarUnit::day, "2024-11-03 00:00 to 2024-11-04 00:00"},
        {"en_WS", "Pacific/Apia", 1325270000, CalendarUnit::weekOfYear, "2011-12-24 00:00 to 2012-01-01 00:00"},
        {"no locale", "Nowhere/Land", 1772719629, CalendarUnit::day, "2026-03-05 00:00 to 2026-03-06 00:00"},
    };
    for (const Case& each : cases) {
        IcuCalendar calendar{each.locale, each.zone};
        const Date date{each.unixTime - Date::secondsFrom1970To2001};
        EXPECT_EQ(unitOf(calendar, each.unit, date), each.expected) << each.locale << " " << each.zone;
    }
    IcuCalendar havana{"es_CU", "America/Havana"};
    const auto day = havana.interval(CalendarUnit::day, Date{1730610000 - Date::secondsFrom1970To2001});
    EXPECT_EQ(day.end.secondsSince(day.start), 25 * 3600.0) << "from the first of the two midnights";
}

TEST(IcuCalendar, FollowsTheTravellersLocaleAndZone)
{
    IcuCalendar calendar;
    EXPECT_EQ(calendar.monthName(march), "March");
    EXPECT_EQ(calendar.formatted(march, Style::shortStyle, Style::none), "3/5/26");
    EXPECT_EQ(calendar.formatted(march, Style::none, Style::none), "");
    calendar.setLocale("cs_CZ");
    calendar.setTimeZone("Asia/Tokyo");
    EXPECT_EQ(calendar.monthName(march), "b\u0159ezen") << "the name as it stands alone";
    EXPECT_EQ(calendar.formatted(march, Style::mediumStyle, Style::shortStyle), "5. 3. 2026 23:07");
    EXPECT_EQ(calendar.formatted(march, "yyyy-MM-dd_HH-mm-ss", "en_US_POSIX"), "2026-03-05_23-07-09");
    EXPECT_EQ(calendar.component(CalendarUnit::month, march), 3);
    EXPECT_EQ(calendar.component(CalendarUnit::year, march), 2026);
    EXPECT_EQ(text(calendar, calendar.adding(CalendarUnit::month, -1, march)), "2026-02-05 23:07");
    calendar.setLocale("ar_EG");
    EXPECT_EQ(text(calendar, march), "2026-03-05 23:07") << "file names are the same everywhere";
}

} // namespace
} // namespace sentrel::simulation
