#pragma once

#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/mac/CloudChange.hpp"
#include "simulation/mac/security/SimulatedLogin.hpp"
#include "simulation/stage/Action.hpp"

#include <optional>
#include <string>

namespace sentrel::simulation {

/// The part of a scenario's action that the invariants must know: what people do to the alarm, as far as no device
/// tells.
struct Deed {
    std::optional<bool> setsArmed{};          ///< the owner arms or disarms
    bool stopsAlarm = false;                  ///< the owner stops the alarm
    bool usesScreen = false;                  ///< somebody uses the menu or a window
    bool clicksStop = false;                  ///< somebody clicks on Stop Alarm in the menu
    std::optional<LoginAnswer> login{};       ///< how the person at the Mac answers login panels from now on
    bool deletesAlerts = false;               ///< the owner deletes alerts from the list
    bool changesSettings = false;             ///< the owner changes settings
    bool quits = false;                       ///< somebody quits the product
    bool crashes = false;                     ///< the process is killed
    bool violentMotion = false;               ///< the machine is moved
    bool jumpsClock = false;                  ///< the wall clock is set
    std::optional<std::string> passcode{};    ///< somebody types it on the lock screen
    std::optional<std::string> newPasscode{}; ///< the owner sets it
    std::optional<CompanionPhone::Command> phoneCommand{};
    std::optional<CloudChange> cloudChange{};
    bool touchesOutput = false; ///< somebody changes volumes or devices
};

[[nodiscard]] Deed deedOf(const Action& action);

} // namespace sentrel::simulation
