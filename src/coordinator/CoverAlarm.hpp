#pragma once

#include "coordinator/AlarmCoordinator.hpp"
#include "lock/ScreenCoverAlarm.hpp"

namespace sentrel {

/// Adapts the coordinator to the screen cover. Main actor.
class CoverAlarm final : public ScreenCoverAlarm {
public:
    /// Only stores the reference: the coordinator may still be under construction.
    explicit CoverAlarm(AlarmCoordinator& coordinator) : coordinator_(coordinator) {}

    [[nodiscard]] bool isArmed() const override { return coordinator_.isArmed.get(); }
    [[nodiscard]] bool isAlarmActive() const override { return coordinator_.isAlarmActive.get(); }
    void trigger(TriggerReason reason) override { coordinator_.trigger(reason); }
    void stopAlarm() override { coordinator_.stopAlarm(); }

private:
    AlarmCoordinator& coordinator_;
};

} // namespace sentrel
