#include "simulation/mac/language/IcuCalendar.hpp"

#include <map>
#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>
#include <utility>

namespace sentrel::simulation {

using ports::CalendarUnit;
using ports::DateInterval;

namespace {

constexpr double millisecondsPerSecond = 1000.0;

UDate icuDate(Date date)
{
    return (date.secondsSinceReferenceDate + Date::secondsFrom1970To2001) * millisecondsPerSecond;
}

Date dateOf(UDate date)
{
    return {date / millisecondsPerSecond - Date::secondsFrom1970To2001};
}

UCalendarDateFields fieldOf(CalendarUnit unit)
{
    switch (unit) {
    case CalendarUnit::day:
        return UCAL_DATE;
    case CalendarUnit::weekOfYear:
        return UCAL_WEEK_OF_YEAR;
    case CalendarUnit::month:
        return UCAL_MONTH;
    case CalendarUnit::year:
        break;
    }
    return UCAL_YEAR;
}

/// Sets the calendar to the first moment of its current day: the earlier of two midnights, or the moment after a gap.
void goToStartOfDay(icu::Calendar& calendar, UErrorCode& error)
{
    for (const auto field : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND}) {
        calendar.set(field, 0);
    }
    calendar.getTime(error);
}

void goToStartOf(CalendarUnit unit, icu::Calendar& calendar, UErrorCode& error)
{
    goToStartOfDay(calendar, error);
    switch (unit) {
    case CalendarUnit::day:
        return;
    case CalendarUnit::weekOfYear: {
        constexpr int daysPerWeek = 7;
        const int weekday = calendar.get(UCAL_DAY_OF_WEEK, error);
        const int first = calendar.getFirstDayOfWeek(error);
        calendar.add(UCAL_DATE, -((weekday - first + daysPerWeek) % daysPerWeek), error);
        break;
    }
    case CalendarUnit::month:
        calendar.set(UCAL_DATE, calendar.getActualMinimum(UCAL_DATE, error));
        break;
    case CalendarUnit::year:
        calendar.set(UCAL_DAY_OF_YEAR, calendar.getActualMinimum(UCAL_DAY_OF_YEAR, error));
        break;
    }
    goToStartOfDay(calendar, error);
}

icu::DateFormat::EStyle icuStyle(ports::Calendar::Style style)
{
    switch (style) {
    case ports::Calendar::Style::shortStyle:
        return icu::DateFormat::kShort;
    case ports::Calendar::Style::mediumStyle:
        return icu::DateFormat::kMedium;
    case ports::Calendar::Style::longStyle:
        return icu::DateFormat::kLong;
    case ports::Calendar::Style::none:
        break;
    }
    return icu::DateFormat::kNone;
}

std::string utf8Of(const icu::UnicodeString& units)
{
    std::string text;
    return units.toUTF8String(text);
}

} // namespace

/// A locale and a time zone, with the calendar that they imply.
struct IcuCalendar::Setting {
    Setting(std::string itsLocale, std::string itsTimeZone)
        : localeName(std::move(itsLocale)), timeZoneName(std::move(itsTimeZone)), locale(localeName.c_str())
    {
        UErrorCode error = U_ZERO_ERROR;
        calendar.reset(icu::Calendar::createInstance(zone(), locale, error));
        if (U_FAILURE(error)) {
            error = U_ZERO_ERROR;
            calendar.reset(icu::Calendar::createInstance(zone(), icu::Locale::getRoot(), error));
        }
        calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    }

    /// A copy for the caller, set to the date.
    [[nodiscard]] std::unique_ptr<icu::Calendar> calendarAt(Date date, UErrorCode& error) const
    {
        std::unique_ptr<icu::Calendar> own{calendar->clone()};
        own->setTime(icuDate(date), error);
        return own;
    }

    /// An unknown zone is UTC (ICU's unknown zone has that offset).
    [[nodiscard]] icu::TimeZone* zone() const
    {
        return icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZoneName));
    }

    std::string formatted(Date date, Style dateStyle, Style timeStyle) const
    {
        const std::lock_guard guard{mutex};
        std::unique_ptr<icu::DateFormat>& format = formats[{dateStyle, timeStyle}];
        if (!format) {
            format.reset(icu::DateFormat::createDateTimeInstance(icuStyle(dateStyle), icuStyle(timeStyle), locale));
            if (!format) {
                return {};
            }
            format->adoptTimeZone(zone());
        }
        icu::UnicodeString units;
        return utf8Of(format->format(icuDate(date), units));
    }

    std::string localeName;
    std::string timeZoneName;
    icu::Locale locale;
    std::unique_ptr<icu::Calendar> calendar;
    mutable std::mutex mutex;
    mutable std::map<std::pair<Style, Style>, std::unique_ptr<icu::DateFormat>> formats; // costly to make
};

IcuCalendar::IcuCalendar(std::string locale, std::string timeZone)
    : setting_(std::make_shared<const Setting>(std::move(locale), std::move(timeZone)))
{
}

IcuCalendar::~IcuCalendar() = default;

bool IcuCalendar::isLocale(const std::string& text)
{
    const icu::Locale locale{text.c_str()};
    return !locale.isBogus() && *locale.getISO3Language() != '\0';
}

bool IcuCalendar::isTimeZone(const std::string& text)
{
    const std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(text))};
    return *zone != icu::TimeZone::getUnknown();
}

std::string IcuCalendar::machinesTimeZone()
{
    const std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::detectHostTimeZone()};
    icu::UnicodeString name;
    return *zone == icu::TimeZone::getUnknown() ? "UTC" : utf8Of(zone->getID(name));
}

std::string IcuCalendar::timeZone()
{
    return setting()->timeZoneName;
}

std::string IcuCalendar::languageTag()
{
    UErrorCode error = U_ZERO_ERROR;
    const auto tag = setting()->locale.toLanguageTag<std::string>(error);
    return U_SUCCESS(error) ? tag : "en";
}

Date IcuCalendar::onClocks(Date date)
{
    const std::unique_ptr<icu::TimeZone> zone{setting()->zone()};
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t offset = 0;
    std::int32_t daylightSaving = 0;
    zone->getOffset(icuDate(date), false, offset, daylightSaving, error);
    return U_SUCCESS(error) ? date.addingSeconds((offset + daylightSaving) / millisecondsPerSecond) : date;
}

void IcuCalendar::setLocale(std::string locale)
{
    const std::lock_guard guard{mutex_};
    setting_ = std::make_shared<const Setting>(std::move(locale), setting_->timeZoneName);
}

void IcuCalendar::setTimeZone(std::string timeZone)
{
    const std::lock_guard guard{mutex_};
    setting_ = std::make_shared<const Setting>(setting_->localeName, std::move(timeZone));
}

std::shared_ptr<const IcuCalendar::Setting> IcuCalendar::setting()
{
    const std::lock_guard guard{mutex_};
    return setting_;
}

DateInterval IcuCalendar::interval(CalendarUnit unit, Date date)
{
    faults_.call("interval");
    UErrorCode error = U_ZERO_ERROR;
    const auto calendar = setting()->calendarAt(date, error);
    goToStartOf(unit, *calendar, error);
    const Date start = dateOf(calendar->getTime(error));
    calendar->add(fieldOf(unit), 1, error);
    // A day may begin after midnight even if the next one doesn't.
    goToStartOfDay(*calendar, error);
    const Date end = dateOf(calendar->getTime(error));
    return U_SUCCESS(error) && start <= date && date < end ? DateInterval{start, end} : DateInterval{date, date};
}

Date IcuCalendar::adding(CalendarUnit unit, int count, Date date)
{
    faults_.call("adding");
    UErrorCode error = U_ZERO_ERROR;
    const auto calendar = setting()->calendarAt(date, error);
    calendar->add(fieldOf(unit), count, error);
    const Date sum = dateOf(calendar->getTime(error));
    return U_SUCCESS(error) ? sum : date;
}

int IcuCalendar::component(CalendarUnit unit, Date date)
{
    faults_.call("component");
    UErrorCode error = U_ZERO_ERROR;
    const auto calendar = setting()->calendarAt(date, error);
    const int number = calendar->get(fieldOf(unit), error);
    return unit == CalendarUnit::month ? number + 1 : number;
}

std::string IcuCalendar::monthName(Date date)
{
    faults_.call("monthName");
    return formatted(date, "LLLL", setting()->localeName);
}

std::string IcuCalendar::formatted(Date date, Style dateStyle, Style timeStyle)
{
    faults_.call("formatted");
    if (dateStyle == Style::none && timeStyle == Style::none) {
        return {};
    }
    return setting()->formatted(date, dateStyle, timeStyle);
}

std::string IcuCalendar::formatted(Date date, const std::string& pattern, const std::string& locale)
{
    faults_.call("formatted");
    UErrorCode error = U_ZERO_ERROR;
    icu::SimpleDateFormat format{icu::UnicodeString::fromUTF8(pattern), icu::Locale{locale.c_str()}, error};
    if (U_FAILURE(error)) {
        return {};
    }
    format.adoptTimeZone(setting()->zone());
    icu::UnicodeString units;
    return utf8Of(format.format(icuDate(date), units));
}

} // namespace sentrel::simulation
