#include "mac/application/MacCalendar.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <Foundation/Foundation.h>

#include <map>
#include <mutex>
#include <utility>

namespace sentrel::mac {

using ports::CalendarUnit;
using ports::DateInterval;

namespace {

NSDate* dateObject(Date date)
{
    return [NSDate dateWithTimeIntervalSinceReferenceDate:date.secondsSinceReferenceDate];
}

Date dateOf(NSDate* date)
{
    return {date.timeIntervalSinceReferenceDate};
}

NSCalendarUnit unitOf(CalendarUnit unit)
{
    switch (unit) {
    case CalendarUnit::day:
        return NSCalendarUnitDay;
    case CalendarUnit::weekOfYear:
        return NSCalendarUnitWeekOfYear;
    case CalendarUnit::month:
        return NSCalendarUnitMonth;
    case CalendarUnit::year:
        break;
    }
    return NSCalendarUnitYear;
}

NSDateFormatterStyle styleOf(ports::Calendar::Style style)
{
    switch (style) {
    case ports::Calendar::Style::shortStyle:
        return NSDateFormatterShortStyle;
    case ports::Calendar::Style::mediumStyle:
        return NSDateFormatterMediumStyle;
    case ports::Calendar::Style::longStyle:
        return NSDateFormatterLongStyle;
    case ports::Calendar::Style::none:
        break;
    }
    return NSDateFormatterNoStyle;
}

} // namespace

/// Formatters by style, kept because they are costly to make. They follow the user's settings.
struct MacCalendar::Formatters {
    NSDateFormatter* formatter(Style dateStyle, Style timeStyle)
    {
        const std::lock_guard guard{mutex};
        NSDateFormatter* __strong& formatter = made[{dateStyle, timeStyle}];
        if (formatter == nil) {
            formatter = [[NSDateFormatter alloc] init];
            formatter.locale = NSLocale.autoupdatingCurrentLocale;
            formatter.timeZone = NSTimeZone.localTimeZone;
            formatter.dateStyle = styleOf(dateStyle);
            formatter.timeStyle = styleOf(timeStyle);
        }
        return formatter;
    }

    std::mutex mutex;
    std::map<std::pair<Style, Style>, NSDateFormatter*> made;
};

MacCalendar::MacCalendar() : formatters_(std::make_unique<Formatters>())
{
}

MacCalendar::~MacCalendar() = default;

DateInterval MacCalendar::interval(CalendarUnit unit, Date date)
{
    NSDate* start = nil;
    NSTimeInterval length = 0;
    NSCalendar* const calendar = NSCalendar.autoupdatingCurrentCalendar;
    if (![calendar rangeOfUnit:unitOf(unit) startDate:&start interval:&length forDate:dateObject(date)]) {
        return {date, date};
    }
    return {dateOf(start), dateOf(start).addingSeconds(length)};
}

Date MacCalendar::adding(CalendarUnit unit, int count, Date date)
{
    NSDate* const sum = [NSCalendar.autoupdatingCurrentCalendar dateByAddingUnit:unitOf(unit)
                                                                           value:count
                                                                          toDate:dateObject(date)
                                                                         options:0];
    return sum != nil ? dateOf(sum) : date;
}

int MacCalendar::component(CalendarUnit unit, Date date)
{
    return static_cast<int>([NSCalendar.autoupdatingCurrentCalendar component:unitOf(unit) fromDate:dateObject(date)]);
}

std::string MacCalendar::monthName(Date date)
{
    NSDateFormatter* const formatter = [[NSDateFormatter alloc] init];
    formatter.dateFormat = @"LLLL";
    return textOf([formatter stringFromDate:dateObject(date)]);
}

std::string MacCalendar::formatted(Date date, Style dateStyle, Style timeStyle)
{
    return textOf([formatters_->formatter(dateStyle, timeStyle) stringFromDate:dateObject(date)]);
}

std::string MacCalendar::formatted(Date date, const std::string& pattern, const std::string& locale)
{
    NSDateFormatter* const formatter = [[NSDateFormatter alloc] init];
    formatter.locale = [NSLocale localeWithLocaleIdentifier:stringObject(locale)];
    formatter.dateFormat = stringObject(pattern);
    return textOf([formatter stringFromDate:dateObject(date)]);
}

} // namespace sentrel::mac
