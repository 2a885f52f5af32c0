#include "app/StopAlarmButton.hpp"

#include "app/ProtectedActions.hpp"
#include "app/ViewParts.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "ports/Language.hpp"

namespace sentrel {

StopAlarmButton::StopAlarmButton(AlarmCoordinator& coordinator, ProtectedActions& protectedActions,
                                 ports::Language& language)
    : coordinator_(coordinator), protectedActions_(protectedActions), language_(language)
{
}

ui::View StopAlarmButton::body(Style style)
{
    // The menu is read in a hurry, so the button is its most prominent control.
    const auto role = style == Style::menuBar ? ui::Button::Role::prominent : ui::Button::Role::destructive;
    return symbolButton(language_.localized("Stop Alarm"), "bell.slash.fill",
                        weakAction(anchor_.weak(), &StopAlarmButton::stop), role)
        .id("stopAlarm")
        .hidden(!coordinator_.isAlarmActive);
}

void StopAlarmButton::stop()
{
    protectedActions_.perform("stopAlarm", [&coordinator = coordinator_] { coordinator.stopAlarm(); });
}

} // namespace sentrel
