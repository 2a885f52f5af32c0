#include "mac/application/MacApplicationNotifications.hpp"

#include "mac/foundation/NotificationObservation.hpp"

#include <utility>

namespace sentrel::mac {

ports::RegistrationPtr MacApplicationNotifications::observe(const std::string& name, std::function<void()> received)
{
    return observeNotification(NSNotificationCenter.defaultCenter, name, std::move(received));
}

} // namespace sentrel::mac
