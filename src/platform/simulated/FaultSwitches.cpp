#include "platform/simulated/FaultSwitches.hpp"

#include "foundation/Fatal.hpp"

namespace sentrel::simulated {

FaultSwitches::FaultSwitches(std::initializer_list<std::string_view> names)
{
    for (const std::string_view name : names) {
        remaining_.emplace(name, 0);
    }
}

bool FaultSwitches::set(std::string_view name, int times)
{
    const std::lock_guard guard{mutex_};
    const auto found = remaining_.find(name);
    if (found == remaining_.end()) {
        return false;
    }
    found->second = times;
    return true;
}

void FaultSwitches::clear()
{
    const std::lock_guard guard{mutex_};
    for (auto& [name, remaining] : remaining_) {
        remaining = 0;
    }
}

bool FaultSwitches::strikes(std::string_view name)
{
    const std::lock_guard guard{mutex_};
    const auto found = remaining_.find(name);
    if (found == remaining_.end()) {
        fatalError("a simulated device asks for a fault that it does not have");
    }
    if (found->second == 0) {
        return false;
    }
    if (found->second > 0) {
        --found->second;
    }
    return true;
}

std::vector<std::string> FaultSwitches::names() const
{
    const std::lock_guard guard{mutex_};
    std::vector<std::string> names;
    for (const auto& [name, remaining] : remaining_) {
        names.push_back(name);
    }
    return names;
}

} // namespace sentrel::simulated
