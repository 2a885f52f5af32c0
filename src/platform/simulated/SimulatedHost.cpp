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

std::optional<Bytes> SimulatedHost::registryData(const std::string& path, const std::string& property)
{
    if (path != "IODeviceTree:/product" || property != "product-name" || !facts_.productName) {
        return std::nullopt;
    }
    Bytes data = bytesOf(*facts_.productName);
    data.push_back(0); // the firmware's texts end so
    return data;
}

std::optional<std::filesystem::path> SimulatedHost::applicationSupportDirectory()
{
    if (faults_.strikes("application-support")) {
        return std::nullopt;
    }
    return root_ / "Application Support";
}

} // namespace sentrel::simulated
