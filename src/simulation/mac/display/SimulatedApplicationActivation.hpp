#pragma once

#include "ports/ApplicationActivation.hpp"
#include "ports/WindowConstants.hpp"
#include "simulation/FaultSwitches.hpp"

#include <atomic>
#include <cstdint>

namespace sentrel::simulation {

/// Tracks which application is in front; at first another one. Any thread.
class SimulatedApplicationActivation final : public ports::ApplicationActivation {
public:
    /// Brings the application to the front; without ignoring the others, the one in front keeps its place.
    void activate(bool ignoringOtherApplications) override
    {
        faults_.call("activate");
        if (ignoringOtherApplications && !isRefused_) {
            isActive_ = true;
        }
    }

    /// Refuses all options without a hidden Dock, as AppKit does.
    bool setPresentationOptions(std::uint64_t options) override
    {
        faults_.call("setPresentationOptions");
        if (options != ports::defaultPresentation && (options & ports::hidesDock) == 0) {
            return false;
        }
        options_ = options;
        return true;
    }

    /// While refused, the application in front keeps its place, as it may when the person is using it.
    void refuseActivation(bool isRefused) { isRefused_ = isRefused; }

    /// Another application takes the place in front, and the keyboard with it.
    void deactivate()
    {
        isActive_ = false;
        ++losses_;
    }

    [[nodiscard]] bool isActive() const { return isActive_; }

    /// Whether the presentation option is in effect: options hold only while the application is active.
    [[nodiscard]] bool isDisabled(std::uint64_t option) const { return isActive_ && (options_ & option) != 0; }

    /// Number of times that another application has taken the keyboard.
    [[nodiscard]] std::uint64_t losses() const { return losses_; }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    std::atomic<bool> isActive_ = false;
    std::atomic<bool> isRefused_ = false;
    std::atomic<std::uint64_t> options_ = ports::defaultPresentation;
    std::atomic<std::uint64_t> losses_ = 0;
};

} // namespace sentrel::simulation
