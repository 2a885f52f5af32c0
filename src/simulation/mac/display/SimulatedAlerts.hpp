#pragma once

#include "ports/Alerts.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/display/OpenPanels.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"

#include <optional>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// Modal alert panels and the person who reads and closes them. Any thread; alerts are run on the main thread.
class SimulatedAlerts final : public ports::Alerts {
public:
    /// An alert that was run.
    struct Shown {
        ports::AlertContent content;
        bool isInFront = false; ///< the application was active; otherwise it opened behind other windows
    };

    SimulatedAlerts(Scheduler& scheduler, const SimulatedApplicationActivation& activation)
        : activation_(activation), panels_(scheduler)
    {
    }

    [[nodiscard]] Async<std::int64_t> runModal(ports::AlertContent content) override
    {
        constexpr std::int64_t firstButton = 1000; // NSAlertFirstButtonReturn
        co_await faults_.awaitedCall("runModal");
        Shown alert{std::move(content), activation_.isActive()};
        co_await panels_.ask(std::move(alert));
        co_return firstButton;
    }

    /// Time until the person closes an alert, 0 at first; none leaves it to `close`. Holds for later alerts.
    void setReadingTime(std::optional<Duration> time) { panels_.setDelay(time); }

    /// Closes the alert that opened last; false when none is open.
    bool close() { return panels_.answer({}); }

    /// The last opened of the open alerts.
    [[nodiscard]] std::optional<Shown> open() const { return panels_.open(); }

    /// All alerts so far, closed ones too.
    [[nodiscard]] std::vector<Shown> shown() const { return panels_.shown(); }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    const SimulatedApplicationActivation& activation_;
    OpenPanels<Shown, std::monostate> panels_;
};

} // namespace sentrel::simulation
