#pragma once

#include "ports/DeviceRegistry.hpp"
#include "ports/Journal.hpp"
#include "simulation/FaultSwitches.hpp"

#include <mutex>

namespace sentrel::simulation {

/// The MacBook's lid as the device registry shows it: `AppleClamshellState` of `IOPMrootDomain`. Any thread.
///
/// Faults: `service` (no such service is found), `property` (the service has no such property).
class SimulatedLid final : public ports::DeviceRegistry {
public:
    /// The lid is open at first.
    explicit SimulatedLid(ports::Journal& journal) : journal_(journal) {}

    [[nodiscard]] std::optional<std::int64_t> number(const std::string& serviceClass,
                                                     const std::string& property) override;

    void open() { setNumber(0); }
    void close() { setNumber(1); }

    /// The Mac has no lid, or its state is not a number.
    void setAbsent() { setNumber(std::nullopt); }

    /// Sets the property to any value, even an invalid one.
    void setNumber(std::optional<std::int64_t> value);

    /// Whether the property shows a closed lid; none without a lid.
    [[nodiscard]] std::optional<bool> isClosed() const;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    ports::Journal& journal_;
    FaultSwitches faults_{"service", "property"};
    mutable std::mutex mutex_;
    std::optional<std::int64_t> clamshellState_ = 0;
};

} // namespace sentrel::simulation
