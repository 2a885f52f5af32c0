#pragma once

#include "ports/Automation.hpp"
#include "simulation/FaultSwitches.hpp"

#include <functional>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// The input of the simulated MacBook. Only one key has an effect, play/pause, when it goes down. Any thread.
class SimulatedInput final : public ports::EventPosting {
public:
    struct Posted {
        ports::SystemDefinedEvent event;
        std::uint32_t tap = 0;
    };

    /// `playPausePressed` is called on the posting thread.
    explicit SimulatedInput(std::function<void()> playPausePressed) : playPausePressed_(std::move(playPausePressed)) {}

    bool postSystemDefined(const ports::SystemDefinedEvent& event, std::uint32_t tap) override;

    /// Every event posted so far.
    [[nodiscard]] std::vector<Posted> posted() const;

    /// `event`: the event can't be made.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{"event"};
    std::function<void()> playPausePressed_;
    mutable std::mutex mutex_;
    std::vector<Posted> posted_;
};

} // namespace sentrel::simulation
