#pragma once

#include "ports/Calendar.hpp"

#include <memory>

namespace sentrel::mac {

/// The user's calendar; follows every change of the settings.
class MacCalendar final : public ports::Calendar {
public:
    MacCalendar();
    ~MacCalendar() override;
    MacCalendar(const MacCalendar&) = delete;

    [[nodiscard]] ports::DateInterval interval(ports::CalendarUnit unit, Date date) override;
    [[nodiscard]] Date adding(ports::CalendarUnit unit, int count, Date date) override;
    [[nodiscard]] int component(ports::CalendarUnit unit, Date date) override;
    [[nodiscard]] std::string monthName(Date date) override;
    [[nodiscard]] std::string formatted(Date date, Style dateStyle, Style timeStyle) override;
    [[nodiscard]] std::string formatted(Date date, const std::string& pattern, const std::string& locale) override;

private:
    struct Formatters;
    std::unique_ptr<Formatters> formatters_;
};

} // namespace sentrel::mac
