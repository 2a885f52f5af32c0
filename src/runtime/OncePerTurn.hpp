#pragma once

#include "runtime/WeakCall.hpp"

#include <functional>
#include <utility>

namespace sentrel {

/// Calls a function at the main actor's next turn, once for however many requests there were until then. Main actor.
class OncePerTurn {
public:
    OncePerTurn(MainActor actor, std::function<void()> work) : actor_(actor), work_(std::move(work)) {}
    OncePerTurn(const OncePerTurn&) = delete;

    void request()
    {
        if (!std::exchange(isDue_, true)) {
            actor_.spawn(callIfAlive(anchor_.weak(), &OncePerTurn::run));
        }
    }

private:
    void run()
    {
        // First, so that what the work itself changes is seen at a further turn.
        isDue_ = false;
        work_();
    }

    MainActor actor_;
    std::function<void()> work_;
    bool isDue_ = false;
    WeakAnchor<OncePerTurn> anchor_{*this};
};

} // namespace sentrel
