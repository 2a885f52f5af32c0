#pragma once

#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"

#include <string>
#include <variant>

namespace sentrel::simulation {

inline Scenario parse(const std::string& text)
{
    return parseScenario(text, "talk.yaml");
}

/// The message for a scenario that can't be read, or "accepted".
inline std::string refusal(const std::string& text)
{
    try {
        static_cast<void>(parse(text));
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "accepted";
}

/// A scenario with one step, which stands in line 2.
inline std::string stepOf(const std::string& body)
{
    return "steps:\n- {" + body + "}\n";
}

inline std::string step(const std::string& body)
{
    return stepOf("at: 0s, " + body);
}

/// The story's sentence for an action.
inline std::string told(const std::string& action)
{
    return std::get<Action>(parse(step("do: " + action)).steps.front().content).tell({}).value_or("");
}

} // namespace sentrel::simulation
