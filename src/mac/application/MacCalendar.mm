#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <Foundation/Foundation.h>

#include <map>
#include <mutex>
#include <utility>

namespace sentrel::mac {

using ports::CalendarUnit;
using ports::DateInterval;

namespace {

NSCalendarUnit unitOf(CalendarUnit unit)
{
    // In the order of `CalendarUnit`.
    constexpr NSCalendarUnit units[] = {NSCalendarUnitDay, NSCalendarUnitWeekOfYear, NSCalendarUnitMonth,
                                        NSCalendarUnitYear};
    return units[static_cast<std::size_t>(unit)];
}

/// The user's calendar; follows every change of the settings.
class MacCalendar final : public ports::Calendar {
public:
    [[nodiscard]] DateInterval interval(CalendarUnit unit, Date date) override
    {
        NSDate* start = nil;
        NSTimeInterval length = 0;
        NSCalendar* const calendar = NSCalendar.autoupdatingCurrentCalendar;
        if (![calendar rangeOfUnit:unitOf(unit) startDate:&start interval:&length forDate:dateObject(date)]) {
            return {date, date};
        }
        return {dateOf(start), dateOf(start).addingSeconds(length)};
    }

    [[nodiscard]] Date adding(CalendarUnit unit, int count, Date date) override
    {
        NSDate* const sum = [NSCalendar.autoupdatingCurrentCalendar dateByAddingUnit:unitOf(unit)
                                                                               value:count
                                                                              toDate:dateObject(date)
                                                                             options:0];
        return sum != nil ? dateOf(sum) : date;
    }

    [[nodiscard]] int component(CalendarUnit unit, Date date) override
    {
        return static_cast<int>([NSCalendar.autoupdatingCurrentCalendar component:unitOf(unit)
                                                                         fromDate:dateObject(date)]);
    }

    [[nodiscard]] std::string monthName(Date date) override
    {
        NSDateFormatter* const formatter = [[NSDateFormatter alloc] init];
        formatter.dateFormat = @"LLLL";
        return textOf([formatter stringFromDate:dateObject(date)]);
    }

    [[nodiscard]] std::string formatted(Date date, Style dateStyle, Style timeStyle) override
    {
        return textOf([formatter(dateStyle, timeStyle) stringFromDate:dateObject(date)]);
    }

    [[nodiscard]] std::string formatted(Date date, const std::string& pattern, const std::string& locale) override
    {
        NSDateFormatter* const formatter = [[NSDateFormatter alloc] init];
        formatter.locale = [NSLocale localeWithLocaleIdentifier:stringObject(locale)];
        formatter.dateFormat = stringObject(pattern);
        return textOf([formatter stringFromDate:dateObject(date)]);
    }

private:
    /// Kept because formatters are costly to make. They follow the user's settings.
    NSDateFormatter* formatter(Style dateStyle, Style timeStyle)
    {
        const std::lock_guard guard{mutex_};
        NSDateFormatter* __strong& formatter = made_[{dateStyle, timeStyle}];
        if (formatter == nil) {
            formatter = [[NSDateFormatter alloc] init];
            formatter.locale = NSLocale.autoupdatingCurrentLocale;
            formatter.timeZone = NSTimeZone.localTimeZone;
            formatter.dateStyle = static_cast<NSDateFormatterStyle>(dateStyle);
            formatter.timeStyle = static_cast<NSDateFormatterStyle>(timeStyle);
        }
        return formatter;
    }

    std::mutex mutex_;
    std::map<std::pair<Style, Style>, NSDateFormatter*> made_;
};

} // namespace

std::unique_ptr<ports::Calendar> makeCalendar()
{
    return std::make_unique<MacCalendar>();
}

} // namespace sentrel::mac
