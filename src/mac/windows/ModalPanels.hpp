#pragma once

#include "runtime/Async.hpp"

#include <cstdint>
#include <functional>

namespace sentrel::mac {

/// Does the work out of the main run loop in its default mode, as if an event had come. For what runs a loop of its
/// own: called from a job of the main queue, such a loop would hold up all other jobs of the queue. Main thread.
void performInMainRunLoop(std::function<void()> work);

/// A panel that is run modally. Each is called on the main thread.
struct ModalPanel {
    std::function<std::int64_t()> run; ///< shows it and gives the modal response once it is closed
    std::function<void()> close;       ///< closes the one that is running
};

/// Runs the panel while the main actor goes on. It waits until an earlier one is closed. When the waiting task ends
/// before, so does the panel. Main thread.
[[nodiscard]] Async<std::int64_t> runModally(ModalPanel panel);

} // namespace sentrel::mac
