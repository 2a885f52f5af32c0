#pragma once

#include "foundation/Json.hpp"
#include "runtime/Time.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/Action.hpp"
#include "simulation/stage/Expectation.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// One step: something is done, or something is expected to hold.
struct Step {
    Duration at{}; ///< since launch, never less than the step before
    int line = 0;
    std::string note; ///< what the story tells first; may be empty
    std::variant<Action, std::vector<Expectation>> content;
};

/// A scenario as it was read: plain values, everything in it known to be well formed.
struct Scenario {
    std::string file; ///< as it was named, for messages
    std::string title;
    simulation::MacDescription mac;
    Json settings = Json::object(); ///< fields of `AlarmSettings` that differ from the defaults, as in `ChangeSettings`
    std::vector<Step> steps;
};

} // namespace sentrel::simulation
