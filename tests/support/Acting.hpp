#pragma once

#include "simulation/stage/Action.hpp"

#include <string>

namespace sentrel::simulation {

/// Performs an action of the scenario language, such as "{menu: armed}"; returns why it can't be done, empty if done.
inline std::string act(MacSession& session, const std::string& action)
{
    return readAction(parseYaml(action), {}).perform(session);
}

} // namespace sentrel::simulation
