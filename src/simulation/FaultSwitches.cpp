#include "simulation/FaultSwitches.hpp"

#include "foundation/Fatal.hpp"

#include <stdexcept>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::string_view raises = "raises";
constexpr std::string_view hangs = "hangs";

} // namespace

FaultSwitches::FaultSwitches(std::initializer_list<std::string_view> names) : remaining_{{"raises", 0}, {"hangs", 0}}
{
    for (const std::string_view name : names) {
        remaining_.emplace(name, 0);
    }
}

bool FaultSwitches::set(std::string_view name, int times)
{
    {
        const std::lock_guard guard{mutex_};
        const auto found = remaining_.find(name);
        if (found == remaining_.end()) {
            return false;
        }
        found->second = times;
    }
    if (name == hangs && calls_ != nullptr) {
        calls_->prepareToHang();
    }
    if (wasSet_) {
        wasSet_();
    }
    return true;
}

bool FaultSwitches::isSet(std::string_view name) const
{
    const std::lock_guard guard{mutex_};
    const auto found = remaining_.find(name);
    return found != remaining_.end() && found->second != 0;
}

std::vector<std::string> FaultSwitches::active() const
{
    const std::lock_guard guard{mutex_};
    std::vector<std::string> names;
    for (const auto& [name, remaining] : remaining_) {
        if (remaining != 0) {
            names.push_back(name);
        }
    }
    return names;
}

std::map<std::string, std::uint64_t, std::less<>> FaultSwitches::struck() const
{
    const std::lock_guard guard{mutex_};
    return struck_;
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
    ++struck_[found->first];
    return true;
}

PortCalls::Fate FaultSwitches::fateOf(std::string_view operation)
{
    using Fate = PortCalls::Fate;
    // Calls between devices are not calls of the product, so these faults don't apply.
    if (calls_ == nullptr || calls_->isProductCalling()) {
        if (strikes(raises)) {
            return Fate::raises;
        }
        if (strikes(hangs)) {
            return Fate::hangs;
        }
    }
    return calls_ != nullptr ? calls_->fateOf(port_, operation) : Fate::passes;
}

void FaultSwitches::call(std::string_view operation)
{
    switch (fateOf(operation)) {
    case PortCalls::Fate::passes:
        return;
    case PortCalls::Fate::raises:
        throw Raised{port_, std::string{operation}};
    case PortCalls::Fate::hangs:
        break;
    }
    if (calls_ == nullptr) {
        throw std::logic_error{"a simulated device without a Mac can't hang"};
    }
    calls_->hang();
}

Async<void> FaultSwitches::awaitedCall(std::string_view operation)
{
    const auto fate = fateOf(operation);
    if (fate == PortCalls::Fate::raises) {
        throw Raised{port_, std::string{operation}};
    }
    if (fate == PortCalls::Fate::hangs) {
        co_await never_.wait();
    }
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

void FaultSwitches::connect(PortCalls& calls, std::string port)
{
    calls_ = &calls;
    port_ = std::move(port);
}

} // namespace sentrel::simulation
