#pragma once

#include "ports/RemoteNotifications.hpp"

#import <Foundation/Foundation.h>

namespace sentrel::mac {

/// Remote notifications of the shared application.
class MacRemoteNotifications final : public ports::RemoteNotifications {
public:
    void setReceiver(Receiver receiver) override { receiver_ = std::move(receiver); }
    void registerForRemoteNotifications() override;
    [[nodiscard]] std::optional<ports::CloudNotification> cloudNotification(const Json& userInfo) override;

    /// Called by the application's delegate.
    void didRegister();
    void didFailToRegister(NSError* error);
    void didReceive(NSDictionary* userInfo);

private:
    Receiver receiver_;
};

} // namespace sentrel::mac
