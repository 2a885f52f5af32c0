#include "simulation/storm/Chronicle.hpp"

#include "foundation/Fatal.hpp"
#include "simulation/stage/MacSession.hpp"

#include <algorithm>
#include <map>
#include <utility>

// The faults of ports, as the chronicle remembers them.

namespace sentrel::simulation {

namespace {

/// Answers that take longer count as none: a request of the product is given up after 15 s, and a pass makes several.
constexpr Duration longestAnswer = std::chrono::seconds{5};

/// Whether something that last happened at this time, or `never`, has happened since another.
bool hasHappened(double last, double since)
{
    return last != never && last >= since;
}

} // namespace

const Chronicle::Port& Chronicle::port(std::string_view name) const
{
    const auto found = std::ranges::lower_bound(ports_, name, {}, &Port::name);
    if (found == ports_.end() || found->name != name) {
        fatalError("a port that the simulated MacBook does not have");
    }
    return *found;
}

bool Chronicle::hadTrouble(std::initializer_list<std::string_view> names, double since) const
{
    return std::ranges::any_of(names,
                               [&](std::string_view name) { return hasHappened(port(name).lastTrouble, since); });
}

bool Chronicle::hadTrouble(double since) const
{
    return std::ranges::any_of(ports_, [since](const Port& port) { return hasHappened(port.lastTrouble, since); });
}

bool Chronicle::wasBroken(std::initializer_list<std::string_view> names, double since) const
{
    return std::ranges::any_of(names, [&](std::string_view name) { return hasHappened(port(name).lastBroken, since); });
}

std::size_t Chronicle::hungPorts(std::initializer_list<std::string_view> names) const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(names, [&](std::string_view name) { return port(name).hangs; }));
}

void Chronicle::forgetHangs()
{
    hasHung = false;
    for (Port& port : ports_) {
        port.hangs = false;
    }
}

/// A fault that was set at the last look may have struck since.
void Chronicle::noteTroubles()
{
    if (!mayBeTroubled_) {
        isUserHidden_ = false;
        return;
    }
    const std::vector<CallFault> waiting = session_.plannedFaults().waiting();
    CloudLink& link = session_.mac().iCloud.link;
    const std::vector<CloudFault> refusals = link.faults().all();
    mayBeTroubled_ = link.latency() > longestAnswer || !refusals.empty();
    // Only deeds set faults.
    const bool isDeed = std::exchange(hasActed_, false);
    bool hasPlan = isDeed;
    for (Port& port : ports_) {
        if (!isDeed && !port.wasBroken && !port.wasStruck) {
            continue;
        }
        const bool isBroken = port.switches->isAnySet();
        const bool isStruck =
            !waiting.empty() && std::ranges::find(waiting, port.name, &CallFault::port) != waiting.end();
        if (isBroken || port.wasBroken) {
            port.lastBroken = at;
        }
        hasPlan = hasPlan || isStruck || port.wasStruck;
        if (isBroken || port.wasBroken || isStruck || port.wasStruck) {
            port.lastTrouble = at;
            mayBeTroubled_ = true;
        }
        port.wasBroken = isBroken;
        port.wasStruck = isStruck;
        noteHangs(port, port.switches->timesHung(), port.hangsOfDevice);
    }
    if (hasPlan) {
        noteHangsOfCalls();
    }
    noteTroublesOfUser(waiting, refusals);
}

/// Faults that strike none but requests to the database keep the Mac from nothing that it asks of the account.
void Chronicle::noteTroublesOfUser(const std::vector<CallFault>& waiting, const std::vector<CloudFault>& refusals)
{
    const auto isOfAccount = [](std::string_view operation) {
        return operation.empty() || operation == nameOf(CloudOperation::accountStatus) ||
               operation == nameOf(CloudOperation::userRecord);
    };
    const auto isElsewhere = [](const Port& port) {
        return port.name != "icloud" && (port.wasBroken || port.wasStruck);
    };
    const auto strikesCall = [&](const CallFault& fault) { return isOfAccount(fault.operation); };
    const auto refuses = [](const CloudFault& fault) {
        return !fault.operation || *fault.operation == CloudOperation::accountStatus ||
               *fault.operation == CloudOperation::userRecord;
    };
    const bool isHidden = session_.mac().iCloud.link.latency() > longestAnswer || port("icloud").wasBroken ||
                          std::ranges::any_of(ports_, isElsewhere) || std::ranges::any_of(waiting, strikesCall) ||
                          std::ranges::any_of(refusals, refuses);
    // One more look, as a fault may have struck since the last.
    userHiddenAt = isHidden || isUserHidden_ ? at : userHiddenAt;
    isUserHidden_ = isHidden;
}

void Chronicle::noteHangs(Port& port, std::uint64_t count, std::uint64_t& known)
{
    if (std::exchange(known, count) != count) {
        port.hangs = true;
        hasHung = true;
    }
}

void Chronicle::noteHangsOfCalls()
{
    const PlannedFaults::Struck struck = session_.plannedFaults().struck();
    std::map<std::string_view, std::uint64_t> calls;
    for (const auto& [place, count] : struck) {
        calls[place.first.first] += place.second == CallFault::Fate::hangs ? count : 0;
    }
    for (Port& port : ports_) {
        const auto found = calls.find(port.name);
        noteHangs(port, found == calls.end() ? 0 : found->second, port.hangsOfCalls);
    }
}

} // namespace sentrel::simulation
