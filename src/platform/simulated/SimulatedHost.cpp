#include "platform/simulated/SimulatedHost.hpp"

#include <utility>

namespace sentrel::simulated {

SimulatedHost::SimulatedHost(std::filesystem::path root, Facts facts) : root_(std::move(root)), facts_(std::move(facts))
{
}

std::optional<std::string> SimulatedHost::systemControlText(const std::string& name)
{
    if (name != "hw.model" || faults_.strikes("model")) {
        return std::nullopt;
    }
    return facts_.model;
}

std::optional<std::filesystem::path> SimulatedHost::applicationSupportDirectory()
{
    if (faults_.strikes("application-support")) {
        return std::nullopt;
    }
    return root_ / "Application Support";
}

} // namespace sentrel::simulated
