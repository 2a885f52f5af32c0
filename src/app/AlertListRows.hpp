#pragma once

#include "alerts/AlertRow.hpp"
#include "platform/Calendar.hpp"
#include "ui/View.hpp"

#include <memory>
#include <vector>

namespace sentrel {

class MacAlertsService;

namespace platform {
class Language;
class WallClock;
} // namespace platform

/// The rows of the list of alerts in their sections. They are made anew only when the alerts have changed or a new day
/// has begun, so that a selection among thousands costs next to nothing. Main actor.
class AlertListRows {
public:
    AlertListRows(MacAlertsService& alerts, platform::Calendar& calendar, platform::WallClock& wallClock,
                  platform::Language& language);

    /// Section views. A row's id is its alert's.
    [[nodiscard]] const ui::Children& sections();

private:
    [[nodiscard]] ui::View section(const AlertSection& section);
    [[nodiscard]] ui::View row(const AlertRow& row, platform::Calendar::Style dateStyle);

    MacAlertsService& alerts_;
    platform::Calendar& calendar_;
    platform::WallClock& wallClock_;
    platform::Language& language_;
    std::shared_ptr<const std::vector<AlertRow>> shown_; ///< what the sections were made of
    platform::DateInterval day_;                         ///< likewise
    ui::Children sections_;
};

} // namespace sentrel
