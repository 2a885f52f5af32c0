#include "platform/macos/MacWorkspaceNotifications.hpp"

#include "platform/macos/NotificationObservation.hpp"

#import <AppKit/AppKit.h>

#include <utility>

namespace sentrel::macos {

platform::RegistrationPtr MacWorkspaceNotifications::observe(const std::string& name, std::function<void()> received)
{
    return observeNotification(NSWorkspace.sharedWorkspace.notificationCenter, name, std::move(received));
}

} // namespace sentrel::macos
