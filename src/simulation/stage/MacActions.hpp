#pragma once

#include "core/AlarmSettings.hpp"
#include "simulation/stage/Action.hpp"

#include <string>

namespace sentrel::simulation {

class MacSession;

/// Does to the simulated MacBook what a scenario says, now. Gives why a person could not do it, or nothing.
std::string perform(MacSession& session, const Action& action);

/// The settings with these fields replaced.
[[nodiscard]] AlarmSettings withFields(AlarmSettings settings, const Json& fields);

/// Why this MacBook can't do the action (an unknown device or fault), with the nearest valid word; empty when it can.
[[nodiscard]] std::string objection(MacSession& session, const Action& action);

} // namespace sentrel::simulation
