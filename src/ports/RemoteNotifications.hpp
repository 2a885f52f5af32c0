#pragma once

#include "foundation/Json.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel::ports {

/// The used fields of a `CKNotification`.
struct CloudNotification {
    std::optional<std::string> subscriptionID;
    std::optional<std::string> recordName; ///< of a query notification
};

/// Pushes through the system's notification service. Main thread.
class RemoteNotifications {
public:
    virtual ~RemoteNotifications() = default;

    /// Calls of the application's delegate, on the main thread.
    struct Receiver {
        std::function<void()> didRegister; ///< a device token was received
        std::function<void(std::string why)> didFailToRegister;
        std::function<void(const Json& userInfo)> didReceive; ///< the push's dictionary, its text keys only
    };

    /// Sets the receiver. Call before `registerForRemoteNotifications`.
    virtual void setReceiver(Receiver receiver) = 0;

    virtual void registerForRemoteNotifications() = 0;

    /// `CKNotification notificationFromRemoteNotificationDictionary`; none when the push isn't a CloudKit notification.
    [[nodiscard]] virtual std::optional<CloudNotification> cloudNotification(const Json& userInfo) = 0;
};

} // namespace sentrel::ports
