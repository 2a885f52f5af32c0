#include "simulation/mac/display/SimulatedApplication.hpp"

#include "ports/Journal.hpp"
#include "simulation/Events.hpp"

#include <utility>

namespace sentrel::simulation {

void SimulatedApplication::start(std::function<void()> ended)
{
    end();
    ended_ = std::move(ended);
    policy_ = accessory;
    hasEnded_ = false;
}

void SimulatedApplication::end()
{
    delegate_ = {};
    ended_ = nullptr;
    isAwaitingReply_ = false;
    hasEnded_ = true;
}

void SimulatedApplication::finishLaunching()
{
    if (delegate_.didFinishLaunching) {
        delegate_.didFinishLaunching();
    }
}

void SimulatedApplication::setActivationPolicy(std::int64_t policy)
{
    faults_.call("setActivationPolicy");
    if (policy < regular || policy > prohibited) {
        return; // AppKit refuses it
    }
    policy_ = policy;
    journal_.note(events::ActivationPolicySet{policy});
}

void SimulatedApplication::terminate()
{
    if (hasEnded_) {
        return;
    }
    journal_.note(events::QuitAsked{});
    const auto ask = delegate_.shouldTerminate;
    const auto reply = ask ? ask() : ports::TerminateReply::now;
    switch (reply) {
    case ports::TerminateReply::cancel:
        journal_.note(events::QuitCancelled{});
        return;
    case ports::TerminateReply::later:
        isAwaitingReply_ = true;
        return;
    case ports::TerminateReply::now:
        return finish();
    }
}

void SimulatedApplication::replyToShouldTerminate(bool shouldTerminate)
{
    faults_.call("replyToShouldTerminate");
    // AppKit ignores a reply if it isn't waiting for one.
    if (!std::exchange(isAwaitingReply_, false)) {
        return;
    }
    if (shouldTerminate) {
        return finish();
    }
    journal_.note(events::QuitCancelled{});
}

void SimulatedApplication::finish()
{
    if (std::exchange(hasEnded_, true)) {
        return;
    }
    isAwaitingReply_ = false;
    if (const auto tell = delegate_.willTerminate) {
        tell();
    }
    journal_.note(events::Quit{});
    if (const auto ended = ended_) {
        ended();
    }
}

} // namespace sentrel::simulation
