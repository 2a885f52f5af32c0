#include "simulation/mac/power/SimulatedLid.hpp"

#include "simulation/Events.hpp"

#include <string_view>

namespace sentrel::simulation {

namespace {

std::string_view describe(std::optional<std::int64_t> clamshellState)
{
    if (!clamshellState) {
        return "absent";
    }
    return *clamshellState == 0 ? "open" : "closed";
}

} // namespace

std::optional<std::int64_t> SimulatedLid::number(const std::string& serviceClass, const std::string& property)
{
    faults_.call("number");
    if (serviceClass != "IOPMrootDomain" || faults_.strikes("service")) {
        return std::nullopt;
    }
    if (property != "AppleClamshellState" || faults_.strikes("property")) {
        return std::nullopt;
    }
    const std::lock_guard guard{mutex_};
    return clamshellState_;
}

void SimulatedLid::setNumber(std::optional<std::int64_t> value)
{
    {
        const std::lock_guard guard{mutex_};
        if (clamshellState_ == value) {
            return;
        }
        clamshellState_ = value;
    }
    journal_.note(events::LidChanged{describe(value)});
}

std::optional<bool> SimulatedLid::isClosed() const
{
    const std::lock_guard guard{mutex_};
    return clamshellState_ ? std::optional{*clamshellState_ != 0} : std::nullopt;
}

} // namespace sentrel::simulation
