#pragma once

#include "ports/Journal.hpp"
#include "ports/PowerSources.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/NotificationHub.hpp"

#include <map>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// One battery, adapter or UPS as the system describes it.
struct PowerSource {
    using Description = std::map<std::string, std::string, std::less<>>;

    /// The texts by key; none when the system has no description of the source.
    std::optional<Description> description;

    /// A source with this name and state.
    static PowerSource reporting(std::string name, std::string state);

    friend bool operator==(const PowerSource&, const PowerSource&) = default;
};

/// The MacBook's power sources. At first one internal battery, charged from the adapter. Any thread; changes are
/// announced on the main thread of the scheduler.
///
/// Faults: `snapshot` (none is given), `list` (the snapshot has none), `register` (no notification source is made),
/// `notification` (a change goes unannounced), `notification-twice`.
class SimulatedPower final : public ports::PowerSources {
public:
    SimulatedPower(Scheduler& scheduler, ports::Journal& journal);

    [[nodiscard]] std::unique_ptr<ports::PowerSourcesSnapshot> copySnapshot() override;
    [[nodiscard]] ports::RegistrationPtr observeChanges(std::function<void()> changed) override;

    /// One internal battery, with the adapter plugged in or not.
    void setAC(bool isOnAC);

    /// Whether any source draws from the adapter; none when no source reports its state.
    [[nodiscard]] std::optional<bool> isOnAC() const;

    /// An empty list, as on a Mac without a battery.
    void setUnknown();

    /// Any list, in this order.
    void setSources(std::vector<PowerSource> sources);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    class Snapshot;
    using Sources = std::vector<PowerSource>;

    [[nodiscard]] std::shared_ptr<const Sources> sources() const;

    ports::Journal& journal_;
    FaultSwitches faults_{"snapshot", "list", "register", "notification", "notification-twice"};
    NotificationHub changes_;
    mutable std::mutex mutex_;
    std::shared_ptr<const Sources> sources_; // immutable, only replaced: snapshots share it
};

} // namespace sentrel::simulation
