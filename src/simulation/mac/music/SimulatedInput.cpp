#include "simulation/mac/music/SimulatedInput.hpp"

namespace sentrel::simulation {

namespace {

constexpr std::uint32_t systemDefined = 14;   // NSEventTypeSystemDefined
constexpr std::int16_t auxControlButtons = 8; // NX_SUBTYPE_AUX_CONTROL_BUTTONS, IOKit's IOLLEvent.h
constexpr std::uint32_t hidTap = 0;           // kCGHIDEventTap
constexpr std::int64_t playKey = 16;          // NX_KEYTYPE_PLAY, IOKit's ev_keymap.h
constexpr std::int64_t keyIsDown = 0x0A;      // NX_KEYDOWN

// The event's first datum holds the key in its upper half and the key's state in the byte below.
bool isPlayPauseDown(const ports::SystemDefinedEvent& event)
{
    return event.type == systemDefined && event.subtype == auxControlButtons && event.data1 >> 16 == playKey &&
           (event.data1 >> 8 & 0xFF) == keyIsDown;
}

} // namespace

bool SimulatedInput::postSystemDefined(const ports::SystemDefinedEvent& event, std::uint32_t tap)
{
    faults_.call("postSystemDefined");
    if (faults_.strikes("event")) {
        return false;
    }
    {
        const std::lock_guard guard{mutex_};
        posted_.push_back({event, tap});
    }
    if (tap == hidTap && isPlayPauseDown(event)) {
        playPausePressed_();
    }
    return true;
}

std::vector<SimulatedInput::Posted> SimulatedInput::posted() const
{
    const std::lock_guard guard{mutex_};
    return posted_;
}

} // namespace sentrel::simulation
