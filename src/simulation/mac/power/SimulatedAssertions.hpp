#pragma once

#include "ports/Journal.hpp"
#include "ports/PowerAssertions.hpp"
#include "simulation/FaultSwitches.hpp"

#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// The system's power-management assertions; notes `assertion.taken` and `assertion.released` {`name`}. Only assertions
/// that keep an idle system awake are granted. Any thread.
///
/// Faults: `create` (refused), `release` (refused; the assertion stays).
class SimulatedAssertions final : public ports::PowerAssertions {
public:
    explicit SimulatedAssertions(ports::Journal& journal) : journal_(journal) {}

    [[nodiscard]] Created create(const std::string& type, std::uint32_t level, const std::string& name) override;
    std::int32_t release(std::uint32_t id) override;

    /// Names of the assertions that are held, in the order in which they were taken.
    [[nodiscard]] std::vector<std::string> held() const;

    /// Releases everything, as the system does when the process that held it has died.
    void dropAll();

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    struct Held {
        std::uint32_t id = 0;
        std::string name;
    };

    ports::Journal& journal_;
    FaultSwitches faults_{"create", "release"};
    mutable std::mutex mutex_;
    std::uint32_t lastId_ = 0x8000; // identifiers are never 0 and never reused
    std::vector<Held> held_;
};

} // namespace sentrel::simulation
