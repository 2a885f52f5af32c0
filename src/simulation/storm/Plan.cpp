#include "simulation/storm/Plan.hpp"

#include <string_view>

namespace sentrel::simulation {

std::string documentOf(const Plan& plan)
{
    std::string text = "title: " + plan.title + "\nwatched: true\n";
    const auto addMap = [&text](std::string_view name, const auto& keys) {
        if (keys.empty()) {
            return;
        }
        text += std::string{name} + ":\n";
        for (const auto& [key, value] : keys) {
            text += "  " + key + ": " + value + "\n";
        }
    };
    addMap("mac", plan.mac);
    addMap("settings", plan.settings);
    text += "steps:\n";
    for (const PlannedStep& step : plan.steps) {
        text += "  - {at: " + std::to_string(step.at) + "ms, do: " + step.action + "}\n";
    }
    return text;
}

} // namespace sentrel::simulation
