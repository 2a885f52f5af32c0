#include "alerts/AlertSections.hpp"
#include "alerts/AlertMerge.hpp"

#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/language/IcuCalendar.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <initializer_list>

namespace sentrel {
namespace {

using testing::ElementsAre;
using testing::Pair;

/// A date and time of UTC, so many hours away from the zone's.
struct Moment {
    int year;
    unsigned month;
    unsigned day;
    int hour = 0;
    int minute = 0;

    [[nodiscard]] Date in(int hoursEast) const
    {
        using namespace std::chrono;
        const sys_days midnight =
            year_month_day{std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{day}};
        const auto time = midnight.time_since_epoch() + hours{hour - hoursEast} + minutes{minute};
        return {duration<double>(time).count() - Date::secondsFrom1970To2001};
    }
};

AlertEvent alert(int number, Date date)
{
    UUID::Octets octets{};
    octets[15] = static_cast<std::uint8_t>(number);
    return {UUID{octets}, TriggerReason::motion, date, "MacBook", std::nullopt, true};
}

struct AlertSectionsTest : testing::Test {
    std::vector<AlertSection> sectionsOf(std::vector<Date> dates, Date now)
    {
        std::vector<AlertEvent> cloud;
        for (const Date date : dates) {
            cloud.push_back(alert(static_cast<int>(cloud.size()), date));
        }
        const auto list = std::make_shared<const std::vector<AlertRow>>(mergedAlerts(std::move(cloud), {}).rows);
        return alertSections(list, now, calendar, language);
    }
    std::string sectionOf(Date date, Date now) { return sectionsOf({date}, now).front().id; }

    simulation::IcuCalendar calendar;
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", log};
};

TEST_F(AlertSectionsTest, EachDateHasItsSection)
{
    struct Case {
        const char* locale;
        const char* zone;
        int hoursEast;
        Moment now;
        Moment date;
        const char* section;
    };
    const Moment thursday{2026, 3, 12, 0, 30};
    const Case cases[] = {
        {"en_US", "UTC", 0, thursday, {2026, 3, 12, 0, 0}, "today"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 12, 23, 59}, "today"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 11, 23, 59}, "yesterday"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 11, 0, 0}, "yesterday"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 10, 23, 59}, "this-week"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 8, 0, 0}, "this-week"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 7, 23, 59}, "this-month"},
        {"de_DE", "UTC", 0, thursday, {2026, 3, 8, 23, 59}, "this-month"}, // weeks begin on Monday
        {"de_DE", "UTC", 0, thursday, {2026, 3, 9, 0, 0}, "this-week"},
        {"fa_IR@calendar=gregorian", "UTC", 0, thursday, {2026, 3, 7, 0, 0}, "this-week"}, // and on Saturday
        {"en_US", "UTC", 0, thursday, {2026, 3, 1, 0, 0}, "this-month"},
        {"en_US", "UTC", 0, thursday, {2026, 2, 28, 23, 59}, "month-2026-02"},
        {"en_US", "UTC", 0, thursday, {2026, 1, 1, 0, 0}, "month-2026-01"},
        {"en_US", "UTC", 0, thursday, {2025, 12, 31, 23, 59}, "year-2025"},
        {"en_US", "UTC", 0, thursday, {1999, 5, 1, 0, 0}, "year-1999"},
        {"en_US", "UTC", 0, thursday, {2026, 3, 13, 0, 0}, "this-week"}, // from the future
        {"en_US", "UTC", 0, thursday, {2031, 3, 13, 0, 0}, "this-week"},
        // The same moments elsewhere: the zone decides on the day.
        {"en_US", "Pacific/Auckland", 13, {2026, 3, 12, 0, 30}, {2026, 3, 11, 23, 59}, "yesterday"},
        {"en_US", "America/Los_Angeles", -7, {2026, 3, 12, 23, 30}, {2026, 3, 12, 0, 0}, "today"},
        {"en_US", "Asia/Kolkata", 5, {2026, 3, 12, 0, 10}, {2026, 3, 11, 23, 45}, "today"}, // half an hour more
        // Yesterday comes before the week, the week before the month and the year.
        {"en_US", "UTC", 0, {2026, 3, 8, 12, 0}, {2026, 3, 7, 12, 0}, "yesterday"},
        {"en_US", "UTC", 0, {2026, 1, 1, 12, 0}, {2025, 12, 31, 12, 0}, "yesterday"},
        {"en_US", "UTC", 0, {2026, 1, 2, 12, 0}, {2025, 12, 28, 12, 0}, "this-week"},
        {"en_US", "UTC", 0, {2026, 1, 2, 12, 0}, {2025, 12, 27, 12, 0}, "year-2025"},
        {"en_US", "UTC", 0, {2026, 4, 2, 12, 0}, {2026, 3, 30, 12, 0}, "this-week"},
        // Clocks went forward in the night before: a day of 23 hours.
        {"de_DE", "Europe/Berlin", 2, {2026, 3, 30, 0, 30}, {2026, 3, 29, 1, 30}, "yesterday"},
        {"de_DE", "Europe/Berlin", 2, {2026, 3, 30, 0, 30}, {2026, 3, 29, 0, 59}, "this-month"},
        {"th_TH", "Asia/Bangkok", 7, thursday, {2025, 6, 1, 0, 0}, "year-2568"},
    };
    for (const Case& each : cases) {
        calendar.setLocale(each.locale);
        calendar.setTimeZone(each.zone);
        EXPECT_EQ(sectionOf(each.date.in(each.hoursEast), each.now.in(each.hoursEast)), each.section)
            << each.locale << " " << each.zone << " " << each.date.year << "-" << each.date.month << "-"
            << each.date.day << " " << each.date.hour << ":" << each.date.minute;
    }
}

TEST_F(AlertSectionsTest, SectionsAreInListOrderNeverEmptyAndNamedForTheUser)
{
    const Date now = Moment{2026, 3, 12, 12, 0}.in(0);
    const auto sections = sectionsOf({Moment{2025, 6, 1}.in(0), Moment{2026, 3, 12, 1}.in(0), Moment{2026, 1, 9}.in(0),
                                      Moment{2026, 3, 9}.in(0), Moment{2026, 3, 12, 2}.in(0), Moment{2026, 3, 1}.in(0),
                                      Moment{2024, 1, 1}.in(0), Moment{2025, 1, 1}.in(0), Moment{2026, 3, 14}.in(0)},
                                     now);
    std::vector<std::pair<std::string, std::size_t>> titles;
    std::vector<std::string> ids;
    for (const AlertSection& section : sections) {
        titles.emplace_back(section.title, section.alerts.size());
        ids.push_back(section.id);
    }
    EXPECT_THAT(titles, ElementsAre(Pair("This week", 2), Pair("Today", 2), Pair("This month", 1), Pair("January", 1),
                                    Pair("2025", 2), Pair("2024", 1)));
    EXPECT_THAT(ids, ElementsAre("this-week", "today", "this-month", "month-2026-01", "year-2025", "year-2024"));
    EXPECT_EQ(sectionsOf({}, now).size(), 0U);

    calendar.setLocale("de_AT");
    EXPECT_EQ(sectionsOf({Moment{2026, 1, 9}.in(0)}, now).front().title, "J\u00e4nner");
}

TEST_F(AlertSectionsTest, DatesBeyondAnyCalendarAreShownToo)
{
    const auto sections = sectionsOf({Date{1e300}, Date{-1e300}, Date{-1e15}, Date{1e15}, Date{0}}, Date{8e8});
    std::size_t rows = 0;
    for (const AlertSection& section : sections) {
        rows += section.alerts.size();
    }
    EXPECT_EQ(rows, 5U);
}

TEST(AlertMerge, ListsAreMergedNewestFirstAndTheCloudsCopyWins)
{
    const AlertEvent both = alert(4, Date{40});
    AlertEvent bothHere = both;
    bothHere.timestamp = Date{40.0001}; // the cloud keeps fewer digits
    MergedAlerts merged = mergedAlerts({alert(1, Date{10}), both, alert(7, Date{20}), alert(3, Date{20})},
                                       {{bothHere, true}, {alert(5, Date{20}), true}, {alert(2, Date{15}), false}});
    const auto described = [](const std::vector<AlertRow>& rows) {
        std::vector<std::pair<int, std::string_view>> texts;
        for (const AlertRow& row : rows) {
            texts.emplace_back(row.alert.id.octets()[15], label(row.storageLocation));
        }
        return texts;
    };
    EXPECT_THAT(described(merged.rows), ElementsAre(Pair(4, "Synced to iCloud"), Pair(3, "Synced to iCloud"),
                                                    Pair(5, "Waiting to upload to iCloud"), Pair(7, "Synced to iCloud"),
                                                    Pair(2, "Saved on this Mac only"), Pair(1, "Synced to iCloud")));
    EXPECT_THAT(merged.redundant, ElementsAre(both.id));

    std::vector<AlertRow> inserted;
    for (const AlertRow& row :
         {merged.rows[3], merged.rows[5], merged.rows[0], merged.rows[2], merged.rows[4], merged.rows[1]}) {
        insertInOrder(inserted, std::vector{row});
    }
    EXPECT_EQ(inserted, merged.rows);
}

} // namespace
} // namespace sentrel
