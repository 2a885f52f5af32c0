#include "simulation/PlannedFaults.hpp"

#include <algorithm>
#include <optional>

namespace sentrel::simulation {

void PlannedFaults::add(CallFault fault)
{
    if (fault.fate != CallFault::Fate::raises) {
        calls_.prepareToHang();
    }
    const std::lock_guard guard{mutex_};
    waiting_.push_back(std::move(fault));
    listen();
}

void PlannedFaults::clear()
{
    const std::lock_guard guard{mutex_};
    waiting_.clear();
    listen();
}

std::vector<CallFault> PlannedFaults::waiting() const
{
    const std::lock_guard guard{mutex_};
    return waiting_;
}

void PlannedFaults::countCalls()
{
    const std::lock_guard guard{mutex_};
    isCounting_ = true;
    listen();
}

std::map<PlannedFaults::Place, std::uint64_t> PlannedFaults::counted() const
{
    const std::lock_guard guard{mutex_};
    std::map<Place, std::uint64_t> all;
    for (const auto& [port, operations] : counted_) {
        for (const auto& [operation, count] : operations) {
            all.emplace(Place{port, operation}, count);
        }
    }
    return all;
}

PlannedFaults::Struck PlannedFaults::struck() const
{
    const std::lock_guard guard{mutex_};
    return struck_;
}

/// The gate is asked only while somebody wants to know. Under the lock.
void PlannedFaults::listen()
{
    if (waiting_.empty() && !isCounting_) {
        calls_.decideBy({});
        return;
    }
    calls_.decideBy([this](std::string_view port, std::string_view operation) { return decide(port, operation); });
}

PortCalls::Fate PlannedFaults::decide(std::string_view port, std::string_view operation)
{
    std::optional<CallFault::Fate> fate;
    {
        const std::lock_guard guard{mutex_};
        if (isCounting_) {
            auto known = counted_.find(port);
            if (known == counted_.end()) {
                known = counted_.emplace(port, std::map<std::string, std::uint64_t, std::less<>>{}).first;
            }
            const auto place = known->second.find(operation);
            if (place == known->second.end()) {
                known->second.emplace(operation, 1);
            } else {
                ++place->second;
            }
        }
        const auto strikes = [&](CallFault& fault) {
            const bool matches = fault.port == port && (fault.operation.empty() || fault.operation == operation);
            return matches && --fault.call == 0;
        };
        const auto struck = std::ranges::find_if(waiting_, strikes);
        if (struck != waiting_.end()) {
            fate = struck->fate;
            ++struck_[{{std::string{port}, std::string{operation}}, *fate}];
            waiting_.erase(struck);
        }
    }
    if (!fate) {
        return PortCalls::Fate::passes;
    }
    if (*fate == CallFault::Fate::raises) {
        return PortCalls::Fate::raises;
    }
    if (*fate != CallFault::Fate::hangs) {
        die_(*fate);
    }
    return PortCalls::Fate::hangs;
}

} // namespace sentrel::simulation
