#include "LineMutator.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

/// Any text is either a scenario or refused with a `ScenarioError`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text{reinterpret_cast<const char*>(data), size};
    try {
        static_cast<void>(sentrel::simulation::parseScenario(text, "fuzz/scenario.yaml"));
    } catch (const sentrel::simulation::ScenarioError&) {
    }
    return 0;
}
