#include "app/CloudCatchUp.hpp"

#include "alerts/MacAlertsService.hpp"
#include "core/coordinator/AlarmCoordinator.hpp"

namespace sentrel {

Async<void> CloudCatchUp::catchUp()
{
    return alerts_.catchUp();
}

void CloudCatchUp::refreshStatus()
{
    coordinator_.clearLocalSaveNoticeIfResolved();
    alerts_.refreshStorageNotice();
    if (!alerts_.hasLoadedInitialAlerts) {
        // Without iCloud nothing has caught up, but there is a list: that of this Mac.
        alerts_.startRefresh();
    }
}

} // namespace sentrel
