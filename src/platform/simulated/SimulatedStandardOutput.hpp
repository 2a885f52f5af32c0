#pragma once

#include "platform/Journal.hpp"
#include "platform/StandardOutput.hpp"
#include "platform/simulated/FaultSwitches.hpp"

namespace sentrel::simulated {

/// The standard output of the product's process, which nobody sees on a MacBook: each line is noted as `printed`
/// {`text`}. Any thread.
class SimulatedStandardOutput final : public platform::StandardOutput {
public:
    explicit SimulatedStandardOutput(platform::Journal& journal) : journal_(journal) {}

    void printLine(std::string_view text) override
    {
        faults_.call("printLine");
        journal_.note("printed", {{"text", text}});
    }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    platform::Journal& journal_;
};

} // namespace sentrel::simulated
