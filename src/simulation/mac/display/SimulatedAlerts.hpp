#pragma once

#include "ports/Alerts.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Time.hpp"
#include "simulation/FaultSwitches.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace sentrel {
class Scheduler;
}

namespace sentrel::simulation {

class SimulatedApplicationActivation;

/// Modal alert panels and the person who reads and closes them. Any thread; alerts are run on the main thread.
class SimulatedAlerts final : public ports::Alerts {
public:
    /// An alert that was run.
    struct Shown {
        ports::AlertContent content;
        bool isInFront = false; ///< the application was active; otherwise it opened behind other windows
    };

    SimulatedAlerts(Scheduler& scheduler, const SimulatedApplicationActivation& activation);

    [[nodiscard]] Async<std::int64_t> runModal(ports::AlertContent content) override;

    /// Time until the person closes an alert, 0 at first; none leaves it to `close`. Holds for later alerts.
    void setReadingTime(std::optional<Duration> time);

    /// Closes the alert that opened last; false when none is open.
    bool close();

    /// The last opened of the open alerts.
    [[nodiscard]] std::optional<Shown> open() const;

    /// All alerts so far, closed ones too.
    [[nodiscard]] std::vector<Shown> shown() const;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    struct Panel {
        Shown alert;
        Semaphore closed;
    };
    class Opened;

    Scheduler& scheduler_;
    const SimulatedApplicationActivation& activation_;
    mutable std::mutex mutex_;
    std::optional<Duration> readingTime_{Duration::zero()};
    std::vector<std::shared_ptr<Panel>> open_;
    std::vector<Shown> shown_;
};

} // namespace sentrel::simulation
