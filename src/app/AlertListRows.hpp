#pragma once

#include "alerts/AlertRow.hpp"
#include "ports/Calendar.hpp"
#include "ui/View.hpp"

#include <memory>
#include <vector>

namespace sentrel {

class MacAlertsService;

namespace ports {
class Language;
}

/// The rows of the list of alerts in their sections. They are rebuilt only when the alerts have changed or after
/// `forget`, so that a selection among thousands costs next to nothing. Main actor.
class AlertListRows {
public:
    AlertListRows(MacAlertsService& alerts, ports::Calendar& calendar, ports::Language& language);

    /// Section views. A row's id is its alert's identifier.
    [[nodiscard]] const ui::Children& sections();

    /// Call when the calendar has changed or a new day has begun.
    void forget() { shown_.reset(); }

private:
    [[nodiscard]] ui::View section(const AlertSection& section);
    [[nodiscard]] ui::View row(const AlertRow& row, ports::Calendar::Style dateStyle);

    MacAlertsService& alerts_;
    ports::Calendar& calendar_;
    ports::Language& language_;
    std::shared_ptr<const std::vector<AlertRow>> shown_; ///< the list that the sections show
    ui::Children sections_;
};

} // namespace sentrel
