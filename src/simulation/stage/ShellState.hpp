#pragma once

#include "foundation/Json.hpp"

namespace sentrel::simulation {

class MacSession;

/// Adds what can be seen of the application: `isArmed`, `isAlarmActive`, `menu`, `window`, `icon`, `activationPolicy`,
/// `quit` and `dialogs`.
void addShell(Json& state, MacSession& session);

} // namespace sentrel::simulation
