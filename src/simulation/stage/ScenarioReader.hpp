#pragma once

#include "simulation/stage/Scenario.hpp"

#include <filesystem>
#include <string>

namespace sentrel::simulation {

/// Reads a scenario file of at most 1 MB and all files that it names. Throws `ScenarioError` for the first fault.
[[nodiscard]] Scenario readScenario(const std::filesystem::path& file);

/// Reads a scenario from its text, any bytes. `file` names it in messages; paths in it are relative to its folder.
[[nodiscard]] Scenario parseScenario(const std::string& text, const std::filesystem::path& file);

/// The JSON Schema of scenarios, for editors. It allows whatever is read, and a little more.
[[nodiscard]] Json scenarioSchema();

} // namespace sentrel::simulation
