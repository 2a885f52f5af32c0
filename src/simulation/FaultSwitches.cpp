#include "simulation/FaultSwitches.hpp"

#include "foundation/Fatal.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::string_view raises = "raises";
constexpr std::string_view hangs = "hangs";

} // namespace

FaultSwitches::FaultSwitches(std::initializer_list<std::string_view> names)
    : faults_(namedFaults(names)), raises_(*find(raises)), hangs_(*find(hangs))
{
}

std::vector<FaultSwitches::Fault> FaultSwitches::namedFaults(std::initializer_list<std::string_view> names)
{
    std::vector<std::string_view> sorted{names};
    sorted.push_back(raises);
    sorted.push_back(hangs);
    std::ranges::sort(sorted);
    std::vector<Fault> faults(sorted.size());
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        faults[i].name = sorted[i];
    }
    return faults;
}

FaultSwitches::Fault* FaultSwitches::find(std::string_view name)
{
    const auto found = std::ranges::find(faults_, name, &Fault::name);
    return found != faults_.end() ? &*found : nullptr;
}

bool FaultSwitches::set(std::string_view name, int times)
{
    Fault* const fault = find(name);
    if (fault == nullptr) {
        return false;
    }
    fault->remaining = times;
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
    return std::ranges::any_of(faults_,
                               [name](const Fault& fault) { return fault.name == name && fault.remaining != 0; });
}

bool FaultSwitches::isAnySet() const
{
    return std::ranges::any_of(faults_, [](const Fault& fault) { return fault.remaining != 0; });
}

std::vector<std::string> FaultSwitches::active() const
{
    std::vector<std::string> names;
    for (const Fault& fault : faults_) {
        if (fault.remaining != 0) {
            names.push_back(fault.name);
        }
    }
    return names;
}

std::map<std::string, std::uint64_t, std::less<>> FaultSwitches::struck() const
{
    std::map<std::string, std::uint64_t, std::less<>> counts;
    for (const Fault& fault : faults_) {
        if (fault.struck != 0) {
            counts.emplace(fault.name, fault.struck);
        }
    }
    return counts;
}

std::map<std::string, std::uint64_t, std::less<>> FaultSwitches::asked() const
{
    std::map<std::string, std::uint64_t, std::less<>> counts;
    for (const Fault& fault : faults_) {
        if (fault.asked != 0) {
            counts.emplace(fault.name, fault.asked);
        }
    }
    return counts;
}

std::uint64_t FaultSwitches::struck(std::string_view name) const
{
    const auto found = std::ranges::find(faults_, name, &Fault::name);
    return found == faults_.end() ? 0 : found->struck.load();
}

void FaultSwitches::clear()
{
    for (Fault& fault : faults_) {
        fault.remaining = 0;
    }
}

bool FaultSwitches::strikes(std::string_view name)
{
    Fault* const fault = find(name);
    if (fault == nullptr) {
        fatalError("a simulated device asks for a fault that it does not have");
    }
    fault->asked.fetch_add(1, std::memory_order_relaxed);
    return strikes(*fault);
}

bool FaultSwitches::strikes(Fault& fault)
{
    int remaining = fault.remaining.load();
    while (remaining > 0 && !fault.remaining.compare_exchange_weak(remaining, remaining - 1)) {
    }
    if (remaining == 0) {
        return false;
    }
    ++fault.struck;
    return true;
}

PortCalls::Fate FaultSwitches::fateOf(std::string_view operation)
{
    using Fate = PortCalls::Fate;
    // Calls between devices are not calls of the product, so these faults don't apply.
    if (calls_ == nullptr || calls_->isProductCalling()) {
        if (strikes(raises_)) {
            return Fate::raises;
        }
        if (strikes(hangs_)) {
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
    std::vector<std::string> names;
    for (const Fault& fault : faults_) {
        names.push_back(fault.name);
    }
    return names;
}

void FaultSwitches::connect(PortCalls& calls, std::string port)
{
    calls_ = &calls;
    port_ = std::move(port);
}

} // namespace sentrel::simulation
