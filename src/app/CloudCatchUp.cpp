#include "app/CloudCatchUp.hpp"

#include "alerts/MacAlertsService.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "foundation/Quietly.hpp"

#include <utility>

namespace sentrel {

void CloudCatchUp::userDidChange()
{
    alerts_.userDidChange();
}

Async<void> CloudCatchUp::catchUp()
{
    hasCaughtUp_ = true;
    return alerts_.catchUp();
}

void CloudCatchUp::refreshStatus()
{
    quietly([this] { coordinator_.clearLocalSaveNoticeIfResolved(); });
    quietly([this] { alerts_.refreshStorageNotice(); });
    if (!std::exchange(hasCaughtUp_, false)) {
        // Without iCloud no catch-up has run, but the list shows this Mac's alerts.
        alerts_.startRefresh();
    }
}

} // namespace sentrel
