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

/// One step: an action or expectations.
struct Step {
    Duration at{}; ///< since launch; never decreases from step to step
    int line = 0;
    std::string note; ///< told first by the story; may be empty
    std::variant<Action, std::vector<Expectation>> content;
};

/// A scenario that has been read: plain values, all known to be well formed.
struct Scenario {
    std::string file; ///< as given, for messages
    std::string title;
    MacDescription mac;
    Json settings = Json::object(); ///< fields of `AlarmSettings` that differ from the defaults, as in `ChangeSettings`
    bool isWatched = false;         ///< the invariants are checked all along
    std::vector<Step> steps;
};

} // namespace sentrel::simulation
