#pragma once

#include "ports/Alerts.hpp"
#include "ports/SavePanels.hpp"
#include "ports/StatusBar.hpp"
#include "ports/Windows.hpp"

#include <functional>
#include <memory>

// Windows, panels and the menu bar of AppKit.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::Windows> makeWindows();
[[nodiscard]] std::unique_ptr<ports::StatusBar> makeStatusBar();
[[nodiscard]] std::unique_ptr<ports::Alerts> makeAlerts();
[[nodiscard]] std::unique_ptr<ports::SavePanels> makeSavePanels();

/// Whether a window of this application shields the screen. Then only the window's own controls may remove it or act
/// behind it.
[[nodiscard]] bool isScreenShielded();

/// Runs the work from the main run loop in its default mode, like an event. For work with a nested loop: inside a job
/// of the main queue, such a loop would block all other jobs of the queue. Main thread.
void performInMainRunLoop(std::function<void()> work);

} // namespace sentrel::mac
