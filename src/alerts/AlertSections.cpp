#include "alerts/AlertSections.hpp"

#include "core/LocalizedText.hpp"
#include "ports/Calendar.hpp"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace sentrel {

namespace {

using ports::CalendarUnit;
using ports::DateInterval;

/// In order of precedence: a date belongs to the first stretch that contains it.
enum class Stretch { today, yesterday, thisWeek, thisMonth, monthOfThisYear, earlierYear };

bool contains(const DateInterval& interval, Date date)
{
    return interval.start <= date && date < interval.end;
}

/// The calendar's boundaries as seen from now.
struct Boundaries {
    Boundaries(Date now, ports::Calendar& calendar)
        : today(calendar.interval(CalendarUnit::day, now)),
          yesterday(calendar.interval(CalendarUnit::day, calendar.adding(CalendarUnit::day, -1, now))),
          weekStart(calendar.interval(CalendarUnit::weekOfYear, now).start),
          month(calendar.interval(CalendarUnit::month, now)),
          year(calendar.interval(CalendarUnit::year, now))
    {
    }

    [[nodiscard]] Stretch stretchOf(Date date) const
    {
        if (contains(today, date)) {
            return Stretch::today;
        }
        if (contains(yesterday, date)) {
            return Stretch::yesterday;
        }
        if (date >= weekStart) {
            return Stretch::thisWeek; // also future dates, from a clock that was ahead
        }
        if (contains(month, date)) {
            return Stretch::thisMonth;
        }
        return contains(year, date) ? Stretch::monthOfThisYear : Stretch::earlierYear;
    }

    DateInterval today;
    DateInterval yesterday;
    Date weekStart;
    DateInterval month;
    DateInterval year;
};

std::string monthSectionId(int year, int month)
{
    char text[40];
    const int length = std::snprintf(text, sizeof text, "month-%04d-%02d", year, month);
    return {text, static_cast<std::size_t>(length)};
}

class Sectioner {
public:
    Sectioner(Date now, ports::Calendar& calendar, ports::Language& language)
        : calendar_(calendar), language_(language), boundaries_(now, calendar)
    {
    }

    std::vector<AlertSection> sections(const AlertList& list)
    {
        auto row = list->begin();
        while (row != list->end()) {
            const Date date = row->alert.timestamp;
            const Stretch stretch = boundaries_.stretchOf(date);
            const auto end = endOfRun(std::next(row), list->end(), stretch, date);
            auto& alerts = sectionOf(stretch, date).alerts;
            alerts.reserve(alerts.size() + static_cast<std::size_t>(end - row));
            for (; row != end; ++row) {
                alerts.emplace_back(list, &*row);
            }
        }
        return std::move(sections_);
    }

private:
    using Rows = std::vector<AlertRow>::const_iterator;

    /// The end of the rows in the same section as the row before `row`.
    Rows endOfRun(Rows row, Rows end, Stretch stretch, Date date)
    {
        if (stretch < Stretch::monthOfThisYear) {
            return std::find_if(row, end, [&](const AlertRow& other) {
                return boundaries_.stretchOf(other.alert.timestamp) != stretch;
            });
        }
        const bool isMonth = stretch == Stretch::monthOfThisYear;
        const DateInterval unit = calendar_.interval(isMonth ? CalendarUnit::month : CalendarUnit::year, date);
        return std::find_if(row, end, [&](const AlertRow& other) {
            const Date otherDate = other.alert.timestamp;
            return !contains(unit, otherDate) || boundaries_.stretchOf(otherDate) != stretch;
        });
    }

    AlertSection& sectionOf(Stretch stretch, Date date)
    {
        AlertSection section = emptySection(stretch, date);
        // Future dates put "This week" before today, and its other rows follow later; months and years are contiguous.
        const bool mayGoOn = stretch < Stretch::monthOfThisYear || sections_.empty();
        const auto first = mayGoOn ? sections_.begin() : std::prev(sections_.end());
        const auto present =
            std::find_if(first, sections_.end(), [&](const AlertSection& other) { return other.id == section.id; });
        return present != sections_.end() ? *present : sections_.emplace_back(std::move(section));
    }

    AlertSection emptySection(Stretch stretch, Date date)
    {
        switch (stretch) {
        case Stretch::today:
            return {"today", localizedInAnyCase(language_, "Today"), {}};
        case Stretch::yesterday:
            return {"yesterday", localizedInAnyCase(language_, "Yesterday"), {}};
        case Stretch::thisWeek:
            return {"this-week", localizedInAnyCase(language_, "This week"), {}};
        case Stretch::thisMonth:
            return {"this-month", localizedInAnyCase(language_, "This month"), {}};
        case Stretch::monthOfThisYear: {
            const int year = calendar_.component(CalendarUnit::year, date);
            const int month = calendar_.component(CalendarUnit::month, date);
            return {monthSectionId(year, month), calendar_.monthName(date), {}};
        }
        case Stretch::earlierYear:
            break;
        }
        const std::string year = std::to_string(calendar_.component(CalendarUnit::year, date));
        return {"year-" + year, year, {}};
    }

    ports::Calendar& calendar_;
    ports::Language& language_;
    const Boundaries boundaries_;
    std::vector<AlertSection> sections_;
};

} // namespace

std::vector<AlertSection> alertSections(const AlertList& list, Date now, ports::Calendar& calendar,
                                        ports::Language& language)
{
    return Sectioner{now, calendar, language}.sections(list);
}

} // namespace sentrel
