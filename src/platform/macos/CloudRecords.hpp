#pragma once

#include "platform/CloudDatabase.hpp"

#import <CloudKit/CloudKit.h>

// Records, queries and errors between CloudKit's objects and the port's values. Any thread.

namespace sentrel::macos {

/// The error with its code, its time to wait and the errors of its items. Of a missing object: an internal error.
[[nodiscard]] platform::CloudError cloudErrorOf(NSError* error);

/// An ID in the default zone. Throws `CloudError` with code 12 (invalid arguments) for a name that CloudKit refuses,
/// which it would do with an exception of Objective-C.
[[nodiscard]] CKRecordID* recordIDObject(const std::string& name);
[[nodiscard]] NSArray<CKRecordID*>* recordIDObjects(const std::vector<std::string>& names);

/// The record to save: a fetched one by its system fields, else a new one. Throws like `recordIDObject`.
[[nodiscard]] CKRecord* recordObject(const platform::CloudRecord& record);
[[nodiscard]] NSArray<CKRecord*>* recordObjects(const std::vector<platform::CloudRecord>& records);

/// The record without the fields of kinds that the port doesn't have.
[[nodiscard]] platform::CloudRecord cloudRecordOf(CKRecord* record);

/// The record, or the error where there is none.
[[nodiscard]] platform::CloudRecordResult cloudResultOf(CKRecord* record, NSError* error);

[[nodiscard]] CKQuery* queryObject(const platform::CloudQuery& query);
[[nodiscard]] CKQuerySubscription* subscriptionObject(const platform::CloudSubscription& subscription);

/// Nil for all keys.
[[nodiscard]] NSArray<NSString*>* keyObjects(const platform::CloudDesiredKeys& keys);

} // namespace sentrel::macos
