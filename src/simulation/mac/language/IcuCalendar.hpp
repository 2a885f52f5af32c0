#pragma once

#include "ports/Calendar.hpp"
#include "simulation/FaultSwitches.hpp"

#include <memory>
#include <mutex>
#include <string>

namespace sentrel::simulation {

/// The calendar that a locale and a time zone imply. Both may change at any time. Beyond the calendar's range, results
/// are an empty interval or the date itself. Any thread.
class IcuCalendar final : public ports::Calendar {
public:
    /// `locale` as ICU or BCP 47 writes it ("de_AT", "ja-JP-u-ca-japanese"), `timeZone` as the zone database
    /// ("Europe/Paris"); an unknown zone means UTC.
    explicit IcuCalendar(std::string locale = "en_US", std::string timeZone = "UTC");
    ~IcuCalendar() override;

    /// Whether the text names a known language, perhaps with a script, a region or a calendar.
    [[nodiscard]] static bool isLocale(const std::string& text);
    [[nodiscard]] static bool isTimeZone(const std::string& text);
    /// The host's time zone.
    [[nodiscard]] static std::string machinesTimeZone();

    void setLocale(std::string locale);
    void setTimeZone(std::string timeZone);
    [[nodiscard]] std::string timeZone();
    /// The locale as a BCP 47 tag.
    [[nodiscard]] std::string languageTag();

    /// Shifts the date by the zone's offset: a UTC clock at the result shows the zone's local time at `date`.
    [[nodiscard]] Date onClocks(Date date);

    [[nodiscard]] ports::DateInterval interval(ports::CalendarUnit unit, Date date) override;
    [[nodiscard]] Date adding(ports::CalendarUnit unit, int count, Date date) override;
    [[nodiscard]] int component(ports::CalendarUnit unit, Date date) override;
    [[nodiscard]] std::string monthName(Date date) override;
    [[nodiscard]] std::string formatted(Date date, Style dateStyle, Style timeStyle) override;
    [[nodiscard]] std::string formatted(Date date, const std::string& pattern, const std::string& locale) override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    struct Setting;

    [[nodiscard]] std::shared_ptr<const Setting> setting();

    std::mutex mutex_;
    std::shared_ptr<const Setting> setting_; // immutable; replaced as a whole
};

} // namespace sentrel::simulation
