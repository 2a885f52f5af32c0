#include "mac/cloud/CloudRecords.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/Guarded.hpp"

#include <algorithm>
#include <memory>

namespace sentrel::mac {

namespace {

using ports::CloudError;
using ports::CloudRecord;
using ports::CloudValue;

/// CloudKit's limit for the names of records.
constexpr std::size_t longestRecordName = 255;

/// The name of an item of a partial failure: a record, a zone or a subscription.
std::string itemNameOf(id item)
{
    if (CKRecordID* const record = as<CKRecordID>(item)) {
        return textOf(record.recordName);
    }
    if (CKRecordZoneID* const zone = as<CKRecordZoneID>(item)) {
        return textOf(zone.zoneName);
    }
    return textOf(as<NSString>(item));
}

std::map<std::string, CloudError> itemErrorsOf(NSError* error)
{
    std::map<std::string, CloudError> errors;
    NSDictionary* const byItem = as<NSDictionary>(error.userInfo[CKPartialErrorsByItemIDKey]);
    for (const id item in byItem) {
        if (NSError* const itemError = as<NSError>(byItem[item])) {
            errors.emplace(itemNameOf(item), cloudErrorOf(itemError));
        }
    }
    return errors;
}

struct MakeObject {
    id operator()(const std::string& text) const { return stringObject(text); }
    id operator()(std::int64_t number) const { return @(number); }
    id operator()(double number) const { return @(number); }
    id operator()(Date date) const { return dateObject(date); }
    id operator()(const TextList& texts) const
    {
        NSMutableArray<NSString*>* const objects = [NSMutableArray arrayWithCapacity:texts.size()];
        for (const std::string_view text : texts) {
            [objects addObject:stringObject(std::string{text})];
        }
        return objects;
    }
    id operator()(const ports::CloudAsset& asset) const
    {
        return [[CKAsset alloc] initWithFileURL:fileURL(asset.file)];
    }
    id operator()(const std::vector<std::int64_t>& numbers) const
    {
        return objectsOf(numbers, [](std::int64_t number) { return @(number); });
    }
};

NSPredicate* predicateObject(const ports::CloudPredicate& predicate)
{
    NSArray* const arguments =
        objectsOf(predicate.arguments, [](const auto& argument) { return std::visit(MakeObject{}, argument); });
    NSPredicate* made = nil;
    guardedCloudCall("predicateWithFormat", [&] {
        made = [NSPredicate predicateWithFormat:stringObject(predicate.format) argumentArray:arguments];
    });
    return made;
}

CloudValue numberOf(NSNumber* number)
{
    if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
        return number.doubleValue;
    }
    return std::int64_t{number.longLongValue};
}

std::optional<CloudValue> textsOf(NSArray* array)
{
    TextListWriter texts;
    for (const id element in array) {
        if (as<NSString>(element) == nil) {
            return std::nullopt;
        }
        texts.add(textOf(element));
    }
    return texts.take();
}

/// Keeps the asset, whose end may delete its file.
struct AssetHolder {
    CKAsset* asset;
};

std::optional<CloudValue> assetOf(CKAsset* asset)
{
    NSURL* const url = asset.fileURL;
    if (url == nil) {
        return std::nullopt;
    }
    return ports::CloudAsset{pathOf(url), std::make_shared<const AssetHolder>(AssetHolder{asset})};
}

/// None for an object of a type that the port doesn't have.
std::optional<CloudValue> valueOf(id object)
{
    if (NSString* const text = as<NSString>(object)) {
        return textOf(text);
    }
    if (NSNumber* const number = as<NSNumber>(object)) {
        return numberOf(number);
    }
    if (NSDate* const date = as<NSDate>(object)) {
        return dateOf(date);
    }
    if (NSArray* const array = as<NSArray>(object)) {
        return textsOf(array);
    }
    return assetOf(as<CKAsset>(object));
}

Bytes systemFieldsOf(CKRecord* record)
{
    NSKeyedArchiver* const archiver = [[NSKeyedArchiver alloc] initRequiringSecureCoding:YES];
    [record encodeSystemFieldsWithCoder:archiver];
    [archiver finishEncoding];
    return bytesOf(archiver.encodedData);
}

/// The record with these system fields and no others; nil if they can't be decoded.
CKRecord* fetchedRecord(const Bytes& systemFields)
{
    NSData* const data = [NSData dataWithBytes:systemFields.data() length:systemFields.size()];
    NSKeyedUnarchiver* const unarchiver = [[NSKeyedUnarchiver alloc] initForReadingFromData:data error:nil];
    if (unarchiver == nil) {
        return nil;
    }
    unarchiver.requiresSecureCoding = YES;
    unarchiver.decodingFailurePolicy = NSDecodingFailurePolicySetErrorAndReturn;
    CKRecord* const record = [[CKRecord alloc] initWithCoder:unarchiver];
    [unarchiver finishDecoding];
    return record;
}

/// The record without fields, with the server's version if it has been fetched before.
CKRecord* emptyRecord(const CloudRecord& record)
{
    CKRecordID* const recordID = recordIDObject(record.name);
    NSString* const type = stringObject(record.type);
    if (!record.systemFields.empty()) {
        CKRecord* const fetched = fetchedRecord(record.systemFields);
        if ([fetched.recordID.recordName isEqualToString:recordID.recordName] &&
            [fetched.recordType isEqualToString:type]) {
            return fetched;
        }
    }
    return [[CKRecord alloc] initWithRecordType:type recordID:recordID];
}

CKNotificationInfo* notificationInfo(const ports::CloudSubscription& subscription)
{
    CKNotificationInfo* const info = [[CKNotificationInfo alloc] init];
    if (!subscription.alertLocalizationKey.empty()) {
        info.alertLocalizationKey = stringObject(subscription.alertLocalizationKey);
        info.alertLocalizationArgs = stringObjects(subscription.alertLocalizationArguments);
    }
    if (!subscription.soundName.empty()) {
        info.soundName = stringObject(subscription.soundName);
    }
    if (!subscription.desiredKeys.empty()) {
        info.desiredKeys = stringObjects(subscription.desiredKeys);
    }
    info.shouldSendContentAvailable = subscription.sendsContentAvailable;
    return info;
}

} // namespace

CloudError cloudErrorOf(NSError* error)
{
    if (error == nil) {
        return {textOf(CKErrorDomain), CKErrorInternalError, "neither an answer nor an error came"};
    }
    CloudError made{textOf(error.domain), static_cast<int>(error.code), textOf(error.localizedDescription)};
    if (NSNumber* const retryAfter = as<NSNumber>(error.userInfo[CKErrorRetryAfterKey])) {
        made.retryAfter = retryAfter.doubleValue;
    }
    made.itemErrors = itemErrorsOf(error);
    return made;
}

CKRecordID* recordIDObject(const std::string& name)
{
    const bool isPlain = std::ranges::all_of(name, [](char character) { return character > 0 && character < 0x7f; });
    if (name.empty() || name.size() > longestRecordName || name.starts_with('_') || !isPlain) {
        throw CloudError{textOf(CKErrorDomain), CKErrorInvalidArguments, "no name for a record: " + name};
    }
    CKRecordID* made = nil;
    guardedCloudCall("initWithRecordName", [&] { made = [[CKRecordID alloc] initWithRecordName:stringObject(name)]; });
    return made;
}

NSArray<CKRecordID*>* recordIDObjects(const std::vector<std::string>& names)
{
    return objectsOf(names, recordIDObject);
}

CKRecord* recordObject(const CloudRecord& record)
{
    CKRecord* made = nil;
    guardedCloudCall("setObject", [&] {
        made = emptyRecord(record);
        for (const auto& [name, value] : record.fields) {
            [made setObject:std::visit(MakeObject{}, value) forKey:stringObject(name)];
        }
    });
    return made;
}

NSArray<CKRecord*>* recordObjects(const std::vector<CloudRecord>& records)
{
    return objectsOf(records, recordObject);
}

CloudRecord cloudRecordOf(CKRecord* record)
{
    CloudRecord made;
    made.type = textOf(record.recordType);
    made.name = textOf(record.recordID.recordName);
    made.systemFields = systemFieldsOf(record);
    if (record.modificationDate != nil) {
        made.modificationDate = dateOf(record.modificationDate);
    }
    for (NSString* const key in record.allKeys) {
        if (auto value = valueOf([record objectForKey:key])) {
            made.fields.emplace(textOf(key), std::move(*value));
        }
    }
    return made;
}

ports::CloudRecordResult cloudResultOf(CKRecord* record, NSError* error)
{
    if (record == nil || error != nil) {
        return cloudErrorOf(error);
    }
    return cloudRecordOf(record);
}

CKQuery* queryObject(const ports::CloudQuery& query)
{
    CKQuery* made = nil;
    guardedCloudCall("initWithRecordType", [&] {
        made = [[CKQuery alloc] initWithRecordType:stringObject(query.recordType)
                                         predicate:predicateObject(query.predicate)];
        if (!query.sortKey.empty()) {
            made.sortDescriptors = @[ [NSSortDescriptor sortDescriptorWithKey:stringObject(query.sortKey)
                                                                    ascending:query.isAscending] ];
        }
    });
    return made;
}

CKQuerySubscription* subscriptionObject(const ports::CloudSubscription& subscription)
{
    CKQuerySubscription* made = nil;
    guardedCloudCall("initWithRecordType", [&] {
        made = [[CKQuerySubscription alloc]
            initWithRecordType:stringObject(subscription.recordType)
                     predicate:predicateObject(subscription.predicate)
                subscriptionID:stringObject(subscription.identifier)
                       options:static_cast<CKQuerySubscriptionOptions>(subscription.options)];
        made.notificationInfo = notificationInfo(subscription);
    });
    return made;
}

std::optional<ports::CloudNotification> cloudNotificationOf(NSDictionary* userInfo)
{
    CKNotification* const notification =
        userInfo == nil ? nil : [CKNotification notificationFromRemoteNotificationDictionary:userInfo];
    if (notification == nil) {
        return std::nullopt;
    }
    return ports::CloudNotification{optionalText(notification.subscriptionID),
                                    optionalText(as<CKQueryNotification>(notification).recordID.recordName)};
}

NSArray<NSString*>* keyObjects(const ports::CloudDesiredKeys& keys)
{
    return keys ? stringObjects(*keys) : nil;
}

} // namespace sentrel::mac
