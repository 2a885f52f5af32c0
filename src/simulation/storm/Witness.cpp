#include "simulation/storm/Witness.hpp"

#include "simulation/stage/MacSession.hpp"
#include "simulation/storm/Invariants.hpp"

#include <algorithm>
#include <array>

namespace sentrel::simulation {

namespace {

/// A look at what is still to come: a deadline of an invariant lies at most this far ahead, in seconds.
constexpr double longestDeadline = 8.0;

/// The owner's phone is asked this often, in seconds.
constexpr double phonePeriod = 900.0;

/// An idle world is looked at this often, in seconds.
constexpr double idlePeriod = 60.0;

struct State {
    std::string_view name;
    bool (*holds)(const Sight& now, const Chronicle& past);
};

constexpr std::array<State, 17> states{{
    {"armed", [](auto& now, auto&) { return now.showsArmed; }},
    {"sounding", [](auto& now, auto&) { return now.isSounding; }},
    {"processing", [](auto& now, auto&) { return now.holdsAlarmAssertion; }},
    {"covered", [](auto& now, auto&) { return now.covers > 0; }},
    {"lid closed", [](auto& now, auto&) { return now.isLidClosed; }},
    {"on battery", [](auto& now, auto&) { return !now.isOnAC; }},
    {"asleep", [](auto& now, auto&) { return now.isAsleep; }},
    {"not running", [](auto& now, auto&) { return !now.isRunning; }},
    {"several displays", [](auto& now, auto&) { return now.displays > 1; }},
    {"offline", [](auto& now, auto&) { return !now.isOnline; }},
    {"no account", [](auto& now, auto&) { return !now.hasAccount; }},
    {"another user", [](auto& now, auto&) { return now.user != "maya"; }},
    {"storage full", [](auto& now, auto&) { return now.isStorageFull; }},
    {"alerts waiting", [](auto& now, auto&) { return !now.onDisk.empty(); }},
    {"deletions owed", [](auto& now, auto&) { return now.owedDeletions > 0; }},
    {"a call hangs", [](auto&, auto& past) { return past.hasHung; }},
    {"faults", [](auto&, auto& past) { return past.isTroubled(); }},
}};

} // namespace

std::vector<std::string_view> stateNames()
{
    std::vector<std::string_view> names;
    for (const State& state : states) {
        names.push_back(state.name);
    }
    return names;
}

void Witness::begins(MacSession& session)
{
    session.plannedFaults().countCalls();
    lookout_ = std::make_unique<Lookout>(session);
    chronicle_ = std::make_unique<Chronicle>(session);
    before_ = lookout_->look();
}

void Witness::died(double at, const Raised& raised)
{
    if (violations_.empty()) {
        violations_.push_back({at, "no call ends the process", raised.port + " " + raised.operation + " raised"});
    }
}

void Witness::happened(const Event& event)
{
    if (lookout_ == nullptr) {
        return;
    }
    lookout_->happened(event);
    chronicle_->happened(event);
    experience_.triggers += event.name == "trigger" ? 1U : 0U;
    experience_.crashes += event.name == "crashed" ? 1U : 0U;
}

void Witness::willPerform(double at, const Step& /*step*/, const Action& action)
{
    chronicle_->willDo(at, deedOf(action), before_);
    isAwaiting_ = true;
}

void Witness::settled(MacSession& session)
{
    const double hours = (session.seconds() - before_.at) / 3600.0;
    experience_.hours += hours;
    experience_.armedHours += before_.showsArmed && before_.isRunning ? hours : 0.0;
    if (chronicle_->isCalmFor(100.0) && session.seconds() - before_.phoneAskedAt > phonePeriod) {
        lookout_->askPhone();
        isAwaiting_ = true;
    }
    const Sight& now = lookout_->look();
    const bool isThorough = lookout_->hasChanged() || now.at - readAt_ >= idlePeriod;
    if (!isThorough && !isAwaiting_) {
        before_.at = now.at;
        return;
    }
    if (isThorough) {
        readAt_ = now.at;
        if (chronicle_->isAtRest()) {
            lookout_->askMemory();
        }
    }
    chronicle_->saw(before_, now, lookout_->hasChanged());
    check(isThorough);
    notePairs();
    chronicle_->conclude(before_, now);
    // After a change, or if one is due, the instants are looked at until every deadline has passed.
    if (lookout_->hasChanged() || chronicle_->isNewlyDue()) {
        awaitsUntil_ = now.at + longestDeadline;
    }
    isAwaiting_ = now.at < awaitsUntil_ || now.isSounding || chronicle_->isTroubled();
    if (lookout_->hasChanged()) {
        before_ = now;
    } else {
        before_.at = now.at;
        before_.phoneAskedAt = now.phoneAskedAt;
        before_.phoneSaysArmed = now.phoneSaysArmed;
    }
}

void Witness::check(bool isThorough)
{
    if (!violations_.empty()) {
        return;
    }
    const Sight& now = lookout_->seen();
    for (const Invariant& invariant : invariants()) {
        if (!isThorough && invariant.pace == Invariant::Pace::onChange) {
            continue;
        }
        if (const auto what = invariant.violation({*chronicle_, before_, now})) {
            violations_.push_back({now.at, std::string{invariant.name}, *what});
            return;
        }
    }
}

void Witness::notePairs()
{
    const Sight& now = lookout_->seen();
    std::array<bool, states.size()> holds{};
    std::ranges::transform(states, holds.begin(), [&](const State& state) { return state.holds(now, *chronicle_); });
    if (holds == held_) {
        return;
    }
    held_ = holds;
    for (std::size_t i = 0; i < states.size(); ++i) {
        for (std::size_t j = i + 1; j < states.size(); ++j) {
            if (holds[i] && holds[j]) {
                experience_.pairs.insert(std::string{states[i].name} + " + " + std::string{states[j].name});
            }
        }
    }
}

void Witness::leaves(MacSession& session)
{
    if (chronicle_ == nullptr) {
        return; // the play never began
    }
    experience_.alerts = chronicle_->alerts.size();
    for (const auto& [place, count] : session.plannedFaults().counted()) {
        experience_.calls[place.first + " " + place.second] += count;
    }
    for (const auto& [struck, count] : session.plannedFaults().struck()) {
        const auto& [place, fate] = struck;
        experience_.faults[place.first + " " + place.second + " " + std::string{nameOf(fate)}] += count;
    }
    for (const auto& [port, switches] : session.mac().faults()) {
        for (const auto& [name, count] : switches->struck()) {
            experience_.faults[port + " " + name] += count;
        }
    }
    lookout_.reset();
    chronicle_.reset();
}

} // namespace sentrel::simulation
