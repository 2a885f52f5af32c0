#pragma once

#include "runtime/Async.hpp"

#include <cstdint>
#include <functional>

namespace sentrel::mac {

/// Runs the work from the main run loop in its default mode, like an event. For work with a nested loop: inside a job
/// of the main queue, such a loop would block all other jobs of the queue. Main thread.
void performInMainRunLoop(std::function<void()> work);

/// A panel to run modally. Called on the main thread.
struct ModalPanel {
    std::function<std::int64_t()> run; ///< shows the panel; returns the response once it is closed
    std::function<void()> close;       ///< closes the running panel
};

/// Runs the panel while the main actor goes on; returns its response. Waits for an earlier panel to close. If the
/// waiting task ends first, so does the panel. Main thread.
[[nodiscard]] Async<std::int64_t> runModally(ModalPanel panel);

} // namespace sentrel::mac
