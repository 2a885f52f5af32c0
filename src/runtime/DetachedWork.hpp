#pragma once

#include "runtime/CancellationError.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Latch.hpp"

#include <memory>
#include <mutex>
#include <utility>

namespace sentrel {

/// Runs detached functions that refer to their owner or its dependencies. The destructor waits for running functions
/// and prevents the others from starting: their tasks end with a `CancellationError`. A member of the owner, used on
/// the owner's executor.
class DetachedWork {
public:
    explicit DetachedWork(Scheduler& scheduler) : scheduler_(scheduler) {}
    DetachedWork(const DetachedWork&) = delete;
    DetachedWork& operator=(const DetachedWork&) = delete;
    ~DetachedWork()
    {
        if (state_->close()) {
            scheduler_.blockUntil(state_->allEnded);
        }
    }

    /// Runs the function off the main thread at the given urgency.
    template <class Function> Task<std::invoke_result_t<Function&>> start(QualityOfService priority, Function function)
    {
        auto guarded = [state = state_, body = std::move(function)]() mutable {
            const Run run{*state};
            return body();
        };
        return detached(scheduler_, priority, std::move(guarded));
    }

private:
    struct State {
        bool begin()
        {
            const std::lock_guard guard{mutex};
            running += isClosed ? 0 : 1;
            return !isClosed;
        }
        void end()
        {
            const std::lock_guard guard{mutex};
            if (--running == 0 && isClosed) {
                allEnded.open();
            }
        }
        /// Prevents further functions from beginning; true when one is running.
        bool close()
        {
            const std::lock_guard guard{mutex};
            isClosed = true;
            return running > 0;
        }

        std::mutex mutex;
        int running = 0;
        bool isClosed = false;
        Latch allEnded;
    };

    struct Run {
        explicit Run(State& of) : state(of)
        {
            if (!state.begin()) {
                throw CancellationError{};
            }
        }
        ~Run() { state.end(); }
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        State& state;
    };

    Scheduler& scheduler_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace sentrel
