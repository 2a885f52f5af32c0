#pragma once

#include "core/TriggerReason.hpp"

namespace sentrel {

/// The screen cover's interface to the alarm. Main actor.
class ScreenCoverAlarm {
public:
    virtual ~ScreenCoverAlarm() = default;

    [[nodiscard]] virtual bool isArmed() const = 0;

    /// Whether the alarm is sounding.
    [[nodiscard]] virtual bool isAlarmActive() const = 0;

    virtual void trigger(TriggerReason reason) = 0;
    virtual void stopAlarm() = 0;
};

} // namespace sentrel
