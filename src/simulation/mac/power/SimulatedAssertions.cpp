#include "simulation/mac/power/SimulatedAssertions.hpp"

#include "simulation/Events.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

// <IOKit/IOReturn.h>
constexpr auto returnError = static_cast<std::int32_t>(0xE00002BCU);
constexpr auto returnBadArgument = static_cast<std::int32_t>(0xE00002C2U);

// <IOKit/pwr_mgt/IOPMLib.h>: the one assertion that keeps an idle Mac awake and lets its displays sleep. Other types
// have another effect, and other levels none: both are refused here, so that neither passes for this one.
constexpr std::string_view preventUserIdleSystemSleep = "PreventUserIdleSystemSleep";
constexpr std::uint32_t levelOn = 255;

} // namespace

SimulatedAssertions::Created SimulatedAssertions::create(const std::string& type, std::uint32_t level,
                                                         const std::string& name)
{
    faults_.call("create");
    if (type != preventUserIdleSystemSleep || level != levelOn) {
        return {returnBadArgument, 0};
    }
    if (faults_.strikes("create")) {
        return {returnError, 0};
    }
    std::uint32_t id = 0;
    {
        const std::lock_guard guard{mutex_};
        id = ++lastId_;
        held_.push_back({id, name});
    }
    journal_.note(events::AssertionTaken{name});
    return {0, id};
}

std::int32_t SimulatedAssertions::release(std::uint32_t id)
{
    faults_.call("release");
    if (faults_.strikes("release")) {
        return returnError;
    }
    std::string name;
    {
        const std::lock_guard guard{mutex_};
        const auto found = std::ranges::find(held_, id, &Held::id);
        if (found == held_.end()) {
            return returnBadArgument;
        }
        name = std::move(found->name);
        held_.erase(found);
    }
    journal_.note(events::AssertionReleased{name});
    return 0;
}

std::vector<std::string> SimulatedAssertions::held() const
{
    const std::lock_guard guard{mutex_};
    std::vector<std::string> names;
    for (const Held& assertion : held_) {
        names.push_back(assertion.name);
    }
    return names;
}

void SimulatedAssertions::dropAll()
{
    std::vector<Held> dropped;
    {
        const std::lock_guard guard{mutex_};
        dropped.swap(held_);
    }
    for (const Held& assertion : dropped) {
        journal_.note(events::AssertionReleased{assertion.name});
    }
}

} // namespace sentrel::simulation
