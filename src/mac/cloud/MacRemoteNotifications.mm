#include "mac/cloud/MacRemoteNotifications.hpp"

#include "mac/files/JsonObjects.hpp"
#include "mac/foundation/FoundationText.hpp"

#import <AppKit/AppKit.h>
#import <CloudKit/CloudKit.h>

#include <nlohmann/json.hpp>

namespace sentrel::mac {

void MacRemoteNotifications::registerForRemoteNotifications()
{
    [NSApp registerForRemoteNotifications];
}

std::optional<ports::CloudNotification> MacRemoteNotifications::cloudNotification(const Json& userInfo)
{
    NSDictionary* const dictionary = dictionaryObject(userInfo);
    CKNotification* const notification =
        dictionary == nil ? nil : [CKNotification notificationFromRemoteNotificationDictionary:dictionary];
    if (notification == nil) {
        return std::nullopt;
    }
    ports::CloudNotification made;
    if (notification.subscriptionID != nil) {
        made.subscriptionID = textOf(notification.subscriptionID);
    }
    if ([notification isKindOfClass:CKQueryNotification.class]) {
        CKRecordID* const recordID = static_cast<CKQueryNotification*>(notification).recordID;
        if (recordID != nil) {
            made.recordName = textOf(recordID.recordName);
        }
    }
    return made;
}

// Each calls a copy: the callback may set another receiver.

void MacRemoteNotifications::didRegister()
{
    if (const auto told = receiver_.didRegister) {
        told();
    }
}

void MacRemoteNotifications::didFailToRegister(NSError* error)
{
    if (const auto told = receiver_.didFailToRegister) {
        told(textOf(error.localizedDescription));
    }
}

void MacRemoteNotifications::didReceive(NSDictionary* userInfo)
{
    if (const auto told = receiver_.didReceive) {
        told(jsonOf(userInfo));
    }
}

} // namespace sentrel::mac
