#pragma once

#include "ports/CloudDatabase.hpp"
#include "ports/RemoteNotifications.hpp"

#import <CloudKit/CloudKit.h>

// Records, queries, errors and pushes between CloudKit's objects and the port's values. Any thread.

namespace sentrel::mac {

/// The error with its code, retry delay and item errors. Nil gives an internal error.
[[nodiscard]] ports::CloudError cloudErrorOf(NSError* error);

/// An ID in the default zone. Throws `CloudError` with code 12 (invalid arguments) for a name that CloudKit would
/// refuse with an Objective-C exception.
[[nodiscard]] CKRecordID* recordIDObject(const std::string& name);
[[nodiscard]] NSArray<CKRecordID*>* recordIDObjects(const std::vector<std::string>& names);

/// The record to save, restored from its system fields if it was fetched, else new. Throws like `recordIDObject`.
[[nodiscard]] CKRecord* recordObject(const ports::CloudRecord& record);
[[nodiscard]] NSArray<CKRecord*>* recordObjects(const std::vector<ports::CloudRecord>& records);

/// The record without fields whose types the port doesn't have.
[[nodiscard]] ports::CloudRecord cloudRecordOf(CKRecord* record);

/// The record, or the error if there is none.
[[nodiscard]] ports::CloudRecordResult cloudResultOf(CKRecord* record, NSError* error);

[[nodiscard]] CKQuery* queryObject(const ports::CloudQuery& query);
[[nodiscard]] CKQuerySubscription* subscriptionObject(const ports::CloudSubscription& subscription);

/// None when the push is nil or isn't a CloudKit notification.
[[nodiscard]] std::optional<ports::CloudNotification> cloudNotificationOf(NSDictionary* userInfo);

/// Nil for all keys.
[[nodiscard]] NSArray<NSString*>* keyObjects(const ports::CloudDesiredKeys& keys);

} // namespace sentrel::mac
