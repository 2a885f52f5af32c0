#pragma once

#include "ports/LoginItem.hpp"
#include "simulation/FaultSwitches.hpp"

#include <filesystem>

namespace sentrel::ports {
class FileSystem;
class Journal;
} // namespace sentrel::ports

namespace sentrel::simulation {

/// The product's entry in the system's list of login items, kept in a JSON file: {"status": 1}. A file that holds
/// anything else reads as not registered. Changes note `login-item` {status}.
///
/// Faults: `register`, `unregister` (the system refuses), `approval` (a new registration waits for the user's
/// approval).
class SimulatedLoginItem final : public ports::LoginItem {
public:
    SimulatedLoginItem(ports::FileSystem& files, ports::Journal& journal, std::filesystem::path file);

    [[nodiscard]] std::int64_t status() override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    [[nodiscard]] std::optional<std::string> unregisterItem() override;

    /// The user changes the `SMAppServiceStatus` in the system's settings.
    [[nodiscard]] std::optional<std::string> setStatus(std::int64_t status);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    ports::FileSystem& files_;
    ports::Journal& journal_;
    const std::filesystem::path file_;
    FaultSwitches faults_{"register", "unregister", "approval"};
};

} // namespace sentrel::simulation
