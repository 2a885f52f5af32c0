#pragma once

#include "core/AlarmSettings.hpp"
#include "simulation/stage/Action.hpp"

#include <string>

namespace sentrel::simulation {

class MacSession;

/// Performs the action on the simulated MacBook, now. Returns why a person could not do it; empty if done.
std::string perform(MacSession& session, const Action& action);

/// The settings with these fields replaced.
[[nodiscard]] AlarmSettings withFields(AlarmSettings settings, const Json& fields);

/// Why this MacBook can't do the action (an unknown device or fault), with the nearest valid word; empty if it can.
[[nodiscard]] std::string objection(MacSession& session, const Action& action);

} // namespace sentrel::simulation
