#pragma once

#include "runtime/WeakCall.hpp"

#include <functional>
#include <utility>

namespace sentrel {

/// Calls a function at the main actor's next turn, once for all requests made until then. Main actor.
class OncePerTurn {
public:
    OncePerTurn(MainActor actor, std::function<void()> work) : actor_(actor), work_(std::move(work)) {}
    OncePerTurn(const OncePerTurn&) = delete;

    void request()
    {
        if (!std::exchange(isDue_, true)) {
            callIfAlive(actor_, anchor_.weak(), &OncePerTurn::run);
        }
    }

private:
    void run()
    {
        // Reset first, so that a request made by the work itself gets a further turn.
        isDue_ = false;
        work_();
    }

    MainActor actor_;
    std::function<void()> work_;
    bool isDue_ = false;
    WeakAnchor<OncePerTurn> anchor_{*this};
};

} // namespace sentrel
