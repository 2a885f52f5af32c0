#include "platform/macos/MacApplicationNotifications.hpp"

#include "platform/macos/NotificationObservation.hpp"

#include <utility>

namespace sentrel::macos {

platform::RegistrationPtr MacApplicationNotifications::observe(const std::string& name, std::function<void()> received)
{
    return observeNotification(NSNotificationCenter.defaultCenter, name, std::move(received));
}

} // namespace sentrel::macos
