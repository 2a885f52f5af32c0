#pragma once

#include "lock/ScreenCoverView.hpp"
#include "ports/Windows.hpp"

#include <cstdint>
#include <memory>

namespace sentrel {

/// The opaque black window that covers one display. Main actor.
class CoverWindow {
public:
    /// Makes the window on the screen, at the level, and orders it front regardless of which application is active.
    CoverWindow(ports::Windows& windows, const ports::Screen& screen, std::int64_t level,
                std::unique_ptr<ScreenCoverView> view);
    CoverWindow(const CoverWindow&) = delete;
    CoverWindow& operator=(const CoverWindow&) = delete;

    void makeKey() { window_->makeKey(); }
    void makeKeyAndOrderFront() { window_->makeKeyAndOrderFront(); }
    void orderOut() { window_->orderOut(); }

private:
    std::unique_ptr<ports::Window> window_;
    std::unique_ptr<ScreenCoverView> view_;
};

} // namespace sentrel
