#pragma once

#include "foundation/Json.hpp"

namespace sentrel::simulation {

class MacSession;

/// Adds the visible state of the application: `isArmed`, `isAlarmActive`, `menu`, `window`, `icon`, `activationPolicy`,
/// `quit` and `dialogs`.
void addShell(Json& state, MacSession& session);

} // namespace sentrel::simulation
