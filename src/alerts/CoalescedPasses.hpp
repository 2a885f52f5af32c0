#pragma once

#include "runtime/MainActor.hpp"

#include <functional>
#include <optional>
#include <utility>

namespace sentrel {

/// Work that is done in whole passes, one at a time: whoever asks during a pass shares the one after it. The passes
/// die with this. Main actor only.
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

    /// Asks for a pass. Only one that begins after this call counts.
    void start()
    {
        isRequested_ = true;
        if (!isRunning()) {
            task_ = actor_.spawn(runWhileRequested());
        }
    }

    /// The same, and waits until no pass is asked for any more. Throws what the last pass threw, and a
    /// `CancellationError` when the wait is cancelled; the passes go on all the same.
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
