#pragma once

#include "foundation/Json.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel::ports {

/// What the product reads of a `CKNotification`.
struct CloudNotification {
    std::optional<std::string> subscriptionID;
    std::optional<std::string> recordName; ///< of a query notification
};

/// Pushes through the system's notification service. Main thread.
class RemoteNotifications {
public:
    virtual ~RemoteNotifications() = default;

    /// What the application's delegate is told, on the main thread.
    struct Receiver {
        std::function<void()> didRegister; ///< with a device token
        std::function<void(std::string why)> didFailToRegister;
        std::function<void(const Json& userInfo)> didReceive; ///< the push's dictionary, its keys that are texts
    };

    /// Sets who is told from now on; before `registerForRemoteNotifications`.
    virtual void setReceiver(Receiver receiver) = 0;

    virtual void registerForRemoteNotifications() = 0;

    /// `CKNotification notificationFromRemoteNotificationDictionary`; none when the push is no CloudKit notification.
    [[nodiscard]] virtual std::optional<CloudNotification> cloudNotification(const Json& userInfo) = 0;
};

} // namespace sentrel::ports
