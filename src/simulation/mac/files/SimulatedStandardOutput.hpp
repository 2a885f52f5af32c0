#pragma once

#include "ports/Journal.hpp"
#include "ports/StandardOutput.hpp"
#include "simulation/Events.hpp"
#include "simulation/FaultSwitches.hpp"

namespace sentrel::simulation {

/// The standard output of the product's process. Each line is noted as `printed` {`text`}. Any thread.
class SimulatedStandardOutput final : public ports::StandardOutput {
public:
    explicit SimulatedStandardOutput(ports::Journal& journal) : journal_(journal) {}

    void printLine(std::string_view text) override
    {
        faults_.call("printLine");
        journal_.note(events::Printed{text});
    }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    ports::Journal& journal_;
};

} // namespace sentrel::simulation
