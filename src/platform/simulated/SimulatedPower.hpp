#pragma once

#include "platform/Journal.hpp"
#include "platform/PowerSources.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/NotificationHub.hpp"
#include "runtime/Scheduler.hpp"

#include <map>
#include <mutex>
#include <vector>

namespace sentrel::simulated {

/// One battery, adapter or UPS as the system describes it.
struct PowerSource {
    using Description = std::map<std::string, std::string, std::less<>>;

    /// The texts by key; none when the system has no description of the source.
    std::optional<Description> description;

    /// A source of this name that reports this state.
    static PowerSource reporting(std::string name, std::string state);

    friend bool operator==(const PowerSource&, const PowerSource&) = default;
};

/// The MacBook's power sources. At first one internal battery, charged from the adapter. Any thread; changes are
/// announced on the main thread of the scheduler.
///
/// Faults: `snapshot` (none is given), `list` (the snapshot has none), `register` (no notification source is made),
/// `notification` (a change goes unannounced).
class SimulatedPower final : public platform::PowerSources {
public:
    SimulatedPower(Scheduler& scheduler, platform::Journal& journal);

    [[nodiscard]] std::unique_ptr<platform::PowerSourcesSnapshot> copySnapshot() override;
    [[nodiscard]] platform::RegistrationPtr observeChanges(std::function<void()> changed) override;

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

    platform::Journal& journal_;
    FaultSwitches faults_{"snapshot", "list", "register", "notification"};
    NotificationHub changes_;
    mutable std::mutex mutex_;
    std::shared_ptr<const Sources> sources_; // never changed, only replaced: a snapshot shares it
};

} // namespace sentrel::simulated
