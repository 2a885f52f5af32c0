#pragma once

#include "platform/RemoteNotifications.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::macos {

/// Remote notifications of the shared application.
class MacRemoteNotifications final : public platform::RemoteNotifications {
public:
    void setReceiver(Receiver receiver) override { receiver_ = std::move(receiver); }
    void registerForRemoteNotifications() override;
    [[nodiscard]] std::optional<platform::CloudNotification> cloudNotification(const Json& userInfo) override;

    /// What the application's delegate hears of remote notifications comes here.
    void didRegister();
    void didFailToRegister(NSError* error);
    void didReceive(NSDictionary* userInfo);

private:
    Receiver receiver_;
};

} // namespace sentrel::macos
