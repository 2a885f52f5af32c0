#include "simulation/mac/SimulatedHost.hpp"

#include <utility>

namespace sentrel::simulation {

SimulatedHost::SimulatedHost(std::filesystem::path root, Facts facts) : root_(std::move(root)), facts_(std::move(facts))
{
}

std::optional<std::string> SimulatedHost::systemControlText(const std::string& name)
{
    faults_.call("systemControlText");
    if (name != "hw.model" || faults_.strikes("model")) {
        return std::nullopt;
    }
    return facts_.model;
}

std::optional<Bytes> SimulatedHost::registryData(const std::string& path, const std::string& property)
{
    faults_.call("registryData");
    if (path != "IODeviceTree:/product" || property != "product-name" || !facts_.productName) {
        return std::nullopt;
    }
    Bytes data = bytesOf(*facts_.productName);
    data.push_back(0); // texts of the firmware are null-terminated
    return data;
}

std::optional<std::string> SimulatedHost::localizedName()
{
    faults_.call("localizedName");
    return facts_.localizedName;
}

std::optional<std::string> SimulatedHost::bundleIdentifier()
{
    faults_.call("bundleIdentifier");
    return facts_.bundleIdentifier;
}

std::filesystem::path SimulatedHost::temporaryDirectory()
{
    faults_.call("temporaryDirectory");
    return root_ / "tmp";
}

std::optional<std::filesystem::path> SimulatedHost::applicationSupportDirectory()
{
    faults_.call("applicationSupportDirectory");
    if (faults_.strikes("application-support")) {
        return std::nullopt;
    }
    return root_ / "Application Support";
}

} // namespace sentrel::simulation
