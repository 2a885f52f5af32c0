#pragma once

#include <functional>

@class NSMenu;

namespace sentrel::mac {

/// The application's menu while it has a window in front. It gives fields the keys for copying and pasting.
[[nodiscard]] NSMenu* makeMainMenu();

/// Whether a window of this application shields the screen. Then only the window's own controls may remove it or act
/// behind it.
[[nodiscard]] bool isScreenShielded();

/// Runs the work from the main run loop in its default mode, like an event. For work with a nested loop: inside a job
/// of the main queue, such a loop would block all other jobs of the queue. Main thread.
void performInMainRunLoop(std::function<void()> work);

} // namespace sentrel::mac
