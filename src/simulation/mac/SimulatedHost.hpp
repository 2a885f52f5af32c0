#pragma once

#include "ports/HostInfo.hpp"
#include "simulation/FaultSwitches.hpp"

namespace sentrel::simulation {

/// The simulated MacBook's description of itself. Its folders lie under a root: "Application Support" and "tmp". Any
/// thread.
class SimulatedHost final : public ports::HostInfo {
public:
    struct Facts {
        std::string model = "MacBookPro18,3"; ///< `hw.model`
        std::optional<std::string> localizedName = "MacBook";
        std::optional<std::string> bundleIdentifier = "pelma.Sentrel";
        std::optional<std::string> productName{}; ///< from the firmware, which may have none
    };

    SimulatedHost(std::filesystem::path root, Facts facts);

    [[nodiscard]] std::optional<std::string> systemControlText(const std::string& name) override;
    [[nodiscard]] std::optional<Bytes> registryData(const std::string& path, const std::string& property) override;
    [[nodiscard]] std::optional<std::string> localizedName() override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() override;

    /// `model`: the system doesn't know its model. `application-support`: it gives no such folder.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{"model", "application-support"};
    const std::filesystem::path root_;
    const Facts facts_;
};

} // namespace sentrel::simulation
