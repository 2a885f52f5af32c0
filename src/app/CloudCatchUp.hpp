#pragma once

#include "cloud/CloudKitConnectionMonitor.hpp"

namespace sentrel {

class AlarmCoordinator;
class MacAlertsService;

/// Lets the list of alerts and the alarm's notices catch up with iCloud. Main actor.
class CloudCatchUp final : public CloudDependents {
public:
    CloudCatchUp(MacAlertsService& alerts, AlarmCoordinator& coordinator) : alerts_(alerts), coordinator_(coordinator)
    {
    }

    void userDidChange() override;
    [[nodiscard]] Async<void> catchUp() override;
    void refreshStatus() override;

private:
    MacAlertsService& alerts_;
    AlarmCoordinator& coordinator_;
    bool hasCaughtUp_ = false; ///< since the last `refreshStatus`
};

} // namespace sentrel
