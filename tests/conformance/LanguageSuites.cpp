#include "conformance/Suite.hpp"
#include "ports/Calendar.hpp"
#include "ports/Language.hpp"

#include <cmath>

namespace sentrel::conformance {

namespace {

using ports::CalendarUnit;
using Style = ports::Calendar::Style;

constexpr double hour = 3600.0;

struct Span {
    CalendarUnit unit;
    const char* name;
    double shortest; ///< hours, over a change of the clocks
    double longest;
};

constexpr Span spans[] = {
    {CalendarUnit::day, "day", 23, 25},
    {CalendarUnit::weekOfYear, "week", 167, 169},
    {CalendarUnit::month, "month", 28 * 24 - 1, 31 * 24 + 1},
    {CalendarUnit::year, "year", 353 * 24, 385 * 24}, // lunar calendars have shorter and longer ones
};

} // namespace

// The user's calendar, time zone and locale are not known: what holds in all of them is checked.
void checkCalendar(const Subject& subject, Report& report)
{
    ports::Calendar& calendar = subject.platform.calendar;
    const Date summer{771586860.0}; // 14 June 2025, 09:41 UTC
    const Date dates[] = {summer, summer.addingSeconds(183 * 24 * hour), Date{0.0}, Date{-3e9}};
    for (const Date& date : dates) {
        for (const Span& span : spans) {
            const auto found = calendar.interval(span.unit, date);
            const double hours = found.end.secondsSince(found.start) / hour;
            const std::string name = std::string{"the "} + span.name;
            report.expect(found.start <= date && date < found.end, name + " holds its moment");
            report.expect(hours >= span.shortest && hours <= span.longest, name + "'s length", std::to_string(hours));
            report.expect(calendar.interval(span.unit, found.end).start == found.end,
                          "a " + name.substr(4) + " begins where the last one ends");
            const Date later = calendar.adding(span.unit, 1, found.start);
            report.expect(later == found.end, name + " added to its beginning gives its end");
            report.expect(calendar.adding(span.unit, -1, later) == found.start, name + " taken off again");
            report.expect(calendar.adding(span.unit, 0, date) == date, "no " + name.substr(4) + " added");
        }
    }
    report.expect(calendar.formatted(summer, "yyyy-MM", "en_US_POSIX") == "2025-06", "a pattern in a given locale",
                  calendar.formatted(summer, "yyyy-MM", "en_US_POSIX"));
    const std::string day = calendar.formatted(summer, "d", "en_US_POSIX");
    report.expect(day == "14" || day == "15" || day == "13", "the day in the user's time zone", day);
    const int month = calendar.component(CalendarUnit::month, summer);
    report.expect(month >= 1 && month <= 13, "a month's number", std::to_string(month));
    report.expect(!calendar.monthName(summer).empty(), "a month has a name");
    report.expect(calendar.formatted(summer, Style::none, Style::none).empty(), "no style gives no text");
    const std::string date = calendar.formatted(summer, Style::longStyle, Style::none);
    const std::string time = calendar.formatted(summer, Style::none, Style::shortStyle);
    report.expect(!date.empty() && !time.empty() && date != time, "dates and times have texts", date + ", " + time);
    const Date far{1e17};
    const auto impossible = calendar.interval(CalendarUnit::year, far);
    report.expect(impossible.start <= impossible.end, "a date beyond all calendars does no harm");
}

void checkLanguage(const Subject& subject, Report& report)
{
    ports::Language& language = subject.platform.language;
    report.expect(language.localized("a text in no table") == "a text in no table", "a text without a table stays");
    report.expect(language.containsIgnoringCase("Maya's MacBook Pro", "MACBOOK"), "case doesn't matter");
    report.expect(language.containsIgnoringCase("GRÖSSE", "größe"), "nor does it for letters that change their number");
    report.expect(!language.containsIgnoringCase("MacBook", "iMac"), "other texts don't match");
    report.expect(!language.containsIgnoringCase("MacBook", ""), "the empty text is contained nowhere");
    const std::pair<const char*, std::size_t> counts[] = {
        {"", 0}, {"abc", 3}, {"größe", 5}, {"e\u0301", 1}, {"👩‍👩‍👧‍👦", 1}, {"密碼", 2}, {"🇩🇪🇫🇷", 2},
    };
    for (const auto& [text, count] : counts) {
        report.expect(language.characterCount(text) == count, "characters as people count them",
                      std::string{text} + " has " + std::to_string(language.characterCount(text)));
    }
    for (const char* const identifier : {"en", "de"}) {
        const auto other = subject.language(identifier);
        const std::string armed = other == nullptr ? "no table" : other->localized("Armed");
        report.expect(armed == (identifier == std::string_view{"en"} ? "Armed" : "Scharf"), "the table's text", armed);
    }
}

} // namespace sentrel::conformance
