#pragma once

#include "runtime/MainActor.hpp"

#include <functional>
#include <optional>
#include <utility>

namespace sentrel {

/// Runs work in whole passes, one at a time; requests during a pass share the next one. The passes end with this
/// object. Main actor only.
class CoalescedPasses {
public:
    CoalescedPasses(MainActor actor, std::function<Async<void>()> pass) : actor_(actor), pass_(std::move(pass)) {}
    CoalescedPasses(const CoalescedPasses&) = delete;
    CoalescedPasses& operator=(const CoalescedPasses&) = delete;
    ~CoalescedPasses()
    {
        if (task_) {
            task_->abandon();
        }
    }

    /// Whether a pass is under way or about to begin.
    [[nodiscard]] bool isRunning() const { return task_ && !task_->isFinished(); }

    /// Requests a pass that begins after this call.
    void start()
    {
        isRequested_ = true;
        if (!isRunning()) {
            task_ = actor_.spawn(runWhileRequested());
        }
    }

    /// The same, and waits until no pass is requested any more. Throws the last pass's error, or a `CancellationError`
    /// when the wait is cancelled, which doesn't stop the passes.
    [[nodiscard]] Async<void> run()
    {
        start();
        const Task<void> task = *task_;
        co_await task;
    }

private:
    Async<void> runWhileRequested()
    {
        while (std::exchange(isRequested_, false)) {
            co_await pass_();
        }
    }

    MainActor actor_;
    const std::function<Async<void>()> pass_;
    bool isRequested_ = false;
    std::optional<Task<void>> task_;
};

} // namespace sentrel
