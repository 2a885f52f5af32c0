#include "mac/application/MacWorkspaceNotifications.hpp"

#include "mac/foundation/NotificationObservation.hpp"

#import <AppKit/AppKit.h>

#include <utility>

namespace sentrel::mac {

ports::RegistrationPtr MacWorkspaceNotifications::observe(const std::string& name, std::function<void()> received)
{
    return observeNotification(NSWorkspace.sharedWorkspace.notificationCenter, name, std::move(received));
}

} // namespace sentrel::mac
