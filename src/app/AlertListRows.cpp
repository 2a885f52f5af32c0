#include "app/AlertListRows.hpp"

#include "alerts/MacAlertsService.hpp"
#include "app/ViewParts.hpp"
#include "ports/Language.hpp"

namespace sentrel {

namespace {

const char* symbolOf(AlertStorageLocation location)
{
    switch (location) {
    case AlertStorageLocation::cloud:
        return "checkmark.icloud";
    case AlertStorageLocation::localMac:
        return "laptopcomputer";
    case AlertStorageLocation::pendingUpload:
        break;
    }
    return "icloud.and.arrow.up";
}

} // namespace

AlertListRows::AlertListRows(MacAlertsService& alerts, ports::Calendar& calendar, ports::Language& language)
    : alerts_(alerts), calendar_(calendar), language_(language)
{
}

const ui::Children& AlertListRows::sections()
{
    if (shown_ == alerts_.alerts.get()) {
        return sections_;
    }
    shown_ = alerts_.alerts;
    std::vector<ui::View> sections;
    for (const AlertSection& each : alerts_.sections()) {
        sections.push_back(section(each));
    }
    sections_ = std::move(sections);
    return sections_;
}

ui::View AlertListRows::section(const AlertSection& section)
{
    using Style = ports::Calendar::Style;
    // The heading names the day already.
    const bool isNamedDay = section.id == "today" || section.id == "yesterday";
    std::vector<ui::View> rows;
    rows.reserve(section.alerts.size());
    for (const auto& each : section.alerts) {
        rows.push_back(row(*each, isNamedDay ? Style::none : Style::mediumStyle));
    }
    return ui::section(section.title, std::move(rows)).id(section.id);
}

ui::View AlertListRows::row(const AlertRow& row, ports::Calendar::Style dateStyle)
{
    const auto secondary = [](std::string text) {
        return ui::text(std::move(text), ui::Text::Style::caption, ui::Text::Color::secondary);
    };
    return ui::verticalStack(
               {
                   ui::text(title(row.alert.reason, language_), ui::Text::Style::headline),
                   secondary(calendar_.formatted(row.alert.timestamp, dateStyle, ports::Calendar::Style::shortStyle)),
                   ui::horizontalStack({ui::view(symbol(symbolOf(row.storageLocation))),
                                        secondary(language_.localized(label(row.storageLocation)))},
                                       4.0),
               },
               2.0, ui::Stack::Alignment::leading)
        .id(row.alert.id.text());
}

} // namespace sentrel
