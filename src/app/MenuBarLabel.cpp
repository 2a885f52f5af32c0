#include "app/MenuBarLabel.hpp"

#include "coordinator/AlarmCoordinator.hpp"
#include "ports/Language.hpp"

namespace sentrel {

MenuBarLabel::MenuBarLabel(AlarmCoordinator& coordinator, bool isComputerCompatible, ports::Language& language)
    : coordinator_(coordinator), isComputerCompatible_(isComputerCompatible), language_(language)
{
    follow(coordinator.isArmed);
}

std::string MenuBarLabel::image() const
{
    return isArmed() ? "MenuBarIconArmed" : "MenuBarIcon";
}

std::string MenuBarLabel::accessibilityLabel() const
{
    return language_.localized("Sentrel") + ": " + language_.localized(isArmed() ? "Armed" : "Disarmed");
}

bool MenuBarLabel::isArmed() const
{
    return isComputerCompatible_ && coordinator_.isArmed;
}

} // namespace sentrel
