#include "simulation/storm/Deed.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {

namespace {

/// One overload for each action that matters.
class DeedReader {
public:
    template <class Other> Deed operator()(const Other& /*action*/) const { return {}; }

    Deed operator()(PlainAction action) const
    {
        switch (action) {
        case PlainAction::arm:
            return {.setsArmed = true};
        case PlainAction::disarm:
            return {.setsArmed = false};
        case PlainAction::stopAlarm:
            return {.stopsAlarm = true};
        case PlainAction::crash:
            return {.crashes = true};
        case PlainAction::quit:
        case PlainAction::relaunch:
            return {.quits = true};
        default:
            return {};
        }
    }

    Deed operator()(const MoveMachine& action) const
    {
        constexpr double slightest = 0.02; // g; the most sensitive setting takes more
        const double length = std::hypot(action.x, action.y, action.z);
        return {.violentMotion = std::abs(length - 1.0) > slightest || std::hypot(action.x, action.y) > slightest};
    }

    Deed operator()(const ChangeSettings& action) const
    {
        Deed deed{.changesSettings = true};
        if (action.fields.contains("isArmed")) {
            deed.setsArmed = action.fields["isArmed"].get<bool>();
        }
        return deed;
    }

    Deed operator()(const UseMenu& /*action*/) const { return {.usesScreen = true}; }
    Deed operator()(const ClickOn& /*action*/) const { return {.usesScreen = true}; }
    Deed operator()(const PressKey& /*action*/) const { return {.usesScreen = true}; }
    Deed operator()(const MoveSlider& /*action*/) const { return {.usesScreen = true}; }
    Deed operator()(const SetVolume& /*action*/) const { return {.touchesOutput = true}; }
    Deed operator()(const SetDefaultOutput& /*action*/) const { return {.touchesOutput = true}; }
    Deed operator()(const RemoveAudioDevice& /*action*/) const { return {.touchesOutput = true}; }
    Deed operator()(const SetPasscode& action) const { return {.newPasscode = action.passcode}; }
    Deed operator()(const TypePasscode& action) const { return {.passcode = action.passcode}; }
    Deed operator()(const MoveClock& /*action*/) const { return {.jumpsClock = true}; }
    Deed operator()(const ChangeCloud& action) const { return {.cloudChange = action.change}; }
    Deed operator()(const UsePhone& action) const { return {.phoneCommand = action.command}; }
    Deed operator()(const DeleteAlerts& /*action*/) const { return {.deletesAlerts = true}; }
};

} // namespace

Deed deedOf(const Action& action)
{
    return std::visit(DeedReader{}, action);
}

} // namespace sentrel::simulation
