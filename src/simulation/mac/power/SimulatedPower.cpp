#include "simulation/mac/power/SimulatedPower.hpp"

#include "simulation/Events.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

// Keys and values of <IOKit/ps/IOPSKeys.h>.
constexpr std::string_view nameKey = "Name";
constexpr std::string_view stateKey = "Power Source State";
constexpr const char* internalBattery = "InternalBattery-0";

/// A summary of the sources' states, for the journal.
std::string summary(const std::vector<PowerSource>& sources)
{
    std::string states;
    for (const PowerSource& source : sources) {
        if (!source.description) {
            continue;
        }
        const auto state = source.description->find(stateKey);
        if (state != source.description->end()) {
            states += (states.empty() ? "" : ", ") + state->second;
        }
    }
    return states.empty() ? "unknown" : states;
}

} // namespace

/// The sources as of its creation.
class SimulatedPower::Snapshot final : public ports::PowerSourcesSnapshot {
public:
    Snapshot(std::shared_ptr<const Sources> sources, bool hasList) : sources_(std::move(sources)), hasList_(hasList) {}

    [[nodiscard]] std::optional<std::size_t> count() const override
    {
        return hasList_ ? std::optional{sources_->size()} : std::nullopt;
    }

    [[nodiscard]] std::optional<std::string> text(std::size_t source, std::string_view key) const override
    {
        const auto& description = sources_->at(source).description;
        if (!description) {
            return std::nullopt;
        }
        const auto found = description->find(key);
        return found != description->end() ? std::optional{found->second} : std::nullopt;
    }

private:
    std::shared_ptr<const Sources> sources_;
    bool hasList_;
};

PowerSource PowerSource::reporting(std::string name, std::string state)
{
    return {Description{{std::string{nameKey}, std::move(name)}, {std::string{stateKey}, std::move(state)}}};
}

SimulatedPower::SimulatedPower(Scheduler& scheduler, ports::Journal& journal)
    : journal_(journal),
      changes_(scheduler.mainExecutor()),
      sources_(std::make_shared<const Sources>(Sources{PowerSource::reporting(internalBattery, "AC Power")}))
{
}

std::unique_ptr<ports::PowerSourcesSnapshot> SimulatedPower::copySnapshot()
{
    faults_.call("copySnapshot");
    if (faults_.strikes("snapshot")) {
        return nullptr;
    }
    return std::make_unique<Snapshot>(sources(), !faults_.strikes("list"));
}

ports::RegistrationPtr SimulatedPower::observeChanges(std::function<void()> changed)
{
    faults_.call("observeChanges");
    if (faults_.strikes("register")) {
        return nullptr;
    }
    return changes_.observe({}, std::move(changed));
}

void SimulatedPower::setAC(bool isOnAC)
{
    setSources({PowerSource::reporting(internalBattery, isOnAC ? "AC Power" : "Battery Power")});
}

void SimulatedPower::setUnknown()
{
    setSources({});
}

void SimulatedPower::setSources(std::vector<PowerSource> sources)
{
    const auto now = std::make_shared<const Sources>(std::move(sources));
    {
        const std::lock_guard guard{mutex_};
        if (*sources_ == *now) {
            return;
        }
        sources_ = now;
    }
    journal_.note(events::PowerChanged{summary(*now)});
    if (!faults_.strikes("notification")) {
        changes_.post({});
    }
    if (faults_.strikes("notification-twice")) {
        changes_.post({});
    }
}

std::optional<bool> SimulatedPower::isOnAC() const
{
    std::optional<bool> isOnAC;
    for (const PowerSource& source : *sources()) {
        if (!source.description) {
            continue;
        }
        if (const auto state = source.description->find(stateKey); state != source.description->end()) {
            isOnAC = isOnAC.value_or(false) || state->second == "AC Power";
        }
    }
    return isOnAC;
}

std::shared_ptr<const SimulatedPower::Sources> SimulatedPower::sources() const
{
    const std::lock_guard guard{mutex_};
    return sources_;
}

} // namespace sentrel::simulation
