#pragma once

#include "platform/Calendar.hpp"

#include <memory>

namespace sentrel::macos {

/// The user's calendar, followed through every change of the settings.
class MacCalendar final : public platform::Calendar {
public:
    MacCalendar();
    ~MacCalendar() override;
    MacCalendar(const MacCalendar&) = delete;

    [[nodiscard]] platform::DateInterval interval(platform::CalendarUnit unit, Date date) override;
    [[nodiscard]] Date adding(platform::CalendarUnit unit, int count, Date date) override;
    [[nodiscard]] int component(platform::CalendarUnit unit, Date date) override;
    [[nodiscard]] std::string monthName(Date date) override;
    [[nodiscard]] std::string formatted(Date date, Style dateStyle, Style timeStyle) override;
    [[nodiscard]] std::string formatted(Date date, const std::string& pattern, const std::string& locale) override;

private:
    struct Formatters;
    std::unique_ptr<Formatters> formatters_;
};

} // namespace sentrel::macos
