#include "simulation/mac/language/IcuCalendar.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ports::CalendarUnit;
using Style = ports::Calendar::Style;

Date dateOf(double unixTime)
{
    return Date{unixTime - Date::secondsFrom1970To2001};
}

const Date march = dateOf(1772719629); // 2026-03-05 14:07:09 UTC

TEST(IcuCalendar, UnitsBeginWhereTheLocaleAndTheZoneSay)
{
    struct Case {
        const char* locale;
        const char* zone;
        Date date;
        CalendarUnit unit;
        const char* expected;
    };
    const Case cases[] = {
        {"en_US", "UTC", march, CalendarUnit::weekOfYear, "2026-03-01 00:00 to 2026-03-08 00:00"},
        {"de_AT", "Europe/Vienna", march, CalendarUnit::weekOfYear, "2026-03-02 00:00 to 2026-03-09 00:00"},
        {"fa_IR", "Asia/Tehran", march, CalendarUnit::month, "2026-02-20 00:00 to 2026-03-21 00:00"},
        // Midnight was skipped, and happened twice, and a whole day was left out.
        {"pt_BR", "America/Sao_Paulo", dateOf(1541350000), CalendarUnit::day, "2018-11-04 01:00 to 2018-11-05 00:00"},
        {"es_CU", "America/Havana", dateOf(1730610000), CalendarUnit::day, "2024-11-03 00:00 to 2024-11-04 00:00"},
        {"en_WS", "Pacific/Apia", dateOf(1325270000), CalendarUnit::weekOfYear, "2011-12-24 00:00 to 2012-01-01 00:00"},
        {"no locale", "Nowhere/Land", march, CalendarUnit::day, "2026-03-05 00:00 to 2026-03-06 00:00"},
    };
    for (const Case& each : cases) {
        IcuCalendar calendar{each.locale, each.zone};
        const auto text = [&](Date date) { return calendar.formatted(date, "yyyy-MM-dd HH:mm", "en_US_POSIX"); };
        const auto interval = calendar.interval(each.unit, each.date);
        EXPECT_EQ(text(interval.start) + " to " + text(interval.end), each.expected) << each.locale << " " << each.zone;
        const bool hasLongDay = each.zone == std::string_view{"America/Havana"};
        EXPECT_TRUE(!hasLongDay || interval.end.secondsSince(interval.start) == 25 * 3600.0) << "both midnights";
    }
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
}

} // namespace
} // namespace sentrel::simulation
