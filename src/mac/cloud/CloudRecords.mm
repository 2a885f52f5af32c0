#include "mac/cloud/CloudRecords.hpp"

#include "mac/foundation/FoundationText.hpp"
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

NSDate* dateObject(Date date)
{
    return [NSDate dateWithTimeIntervalSinceReferenceDate:date.secondsSinceReferenceDate];
}

NSArray<NSString*>* stringObjects(const std::vector<std::string>& texts)
{
    NSMutableArray<NSString*>* const objects = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts) {
        [objects addObject:stringObject(text)];
    }
    return objects;
}

/// The name of an item of a partial failure: a record, a zone or a subscription.
std::string itemNameOf(id item)
{
    if ([item isKindOfClass:CKRecordID.class]) {
        return textOf(static_cast<CKRecordID*>(item).recordName);
    }
    if ([item isKindOfClass:CKRecordZoneID.class]) {
        return textOf(static_cast<CKRecordZoneID*>(item).zoneName);
    }
    return [item isKindOfClass:NSString.class] ? textOf(static_cast<NSString*>(item)) : std::string{};
}

std::map<std::string, CloudError> itemErrorsOf(NSError* error)
{
    std::map<std::string, CloudError> errors;
    const id items = error.userInfo[CKPartialErrorsByItemIDKey];
    if (![items isKindOfClass:NSDictionary.class]) {
        return errors;
    }
    NSDictionary* const byItem = items;
    for (const id item in byItem) {
        const id itemError = byItem[item];
        if ([itemError isKindOfClass:NSError.class]) {
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
        NSURL* const url = [NSURL fileURLWithPath:stringObject(asset.file.native()) isDirectory:NO];
        return [[CKAsset alloc] initWithFileURL:url];
    }
    id operator()(const std::vector<std::int64_t>& numbers) const
    {
        NSMutableArray<NSNumber*>* const objects = [NSMutableArray arrayWithCapacity:numbers.size()];
        for (const std::int64_t number : numbers) {
            [objects addObject:@(number)];
        }
        return objects;
    }
};

NSPredicate* predicateObject(const ports::CloudPredicate& predicate)
{
    NSMutableArray* const arguments = [NSMutableArray array];
    for (const auto& argument : predicate.arguments) {
        [arguments addObject:std::visit(MakeObject{}, argument)];
    }
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
        if (![element isKindOfClass:NSString.class]) {
            return std::nullopt;
        }
        texts.add(textOf(static_cast<NSString*>(element)));
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
    if ([object isKindOfClass:NSString.class]) {
        return textOf(static_cast<NSString*>(object));
    }
    if ([object isKindOfClass:NSNumber.class]) {
        return numberOf(object);
    }
    if ([object isKindOfClass:NSDate.class]) {
        return Date{static_cast<NSDate*>(object).timeIntervalSinceReferenceDate};
    }
    if ([object isKindOfClass:NSArray.class]) {
        return textsOf(object);
    }
    if ([object isKindOfClass:CKAsset.class]) {
        return assetOf(object);
    }
    return std::nullopt;
}

Bytes systemFieldsOf(CKRecord* record)
{
    NSKeyedArchiver* const archiver = [[NSKeyedArchiver alloc] initRequiringSecureCoding:YES];
    [record encodeSystemFieldsWithCoder:archiver];
    [archiver finishEncoding];
    NSData* const data = archiver.encodedData;
    const auto* const first = static_cast<const std::uint8_t*>(data.bytes);
    return Bytes(first, first + data.length);
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
    const id retryAfter = error.userInfo[CKErrorRetryAfterKey];
    if ([retryAfter isKindOfClass:NSNumber.class]) {
        made.retryAfter = static_cast<NSNumber*>(retryAfter).doubleValue;
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
    NSMutableArray<CKRecordID*>* const objects = [NSMutableArray arrayWithCapacity:names.size()];
    for (const std::string& name : names) {
        [objects addObject:recordIDObject(name)];
    }
    return objects;
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
    NSMutableArray<CKRecord*>* const objects = [NSMutableArray arrayWithCapacity:records.size()];
    for (const CloudRecord& record : records) {
        [objects addObject:recordObject(record)];
    }
    return objects;
}

CloudRecord cloudRecordOf(CKRecord* record)
{
    CloudRecord made;
    made.type = textOf(record.recordType);
    made.name = textOf(record.recordID.recordName);
    made.systemFields = systemFieldsOf(record);
    if (record.modificationDate != nil) {
        made.modificationDate = Date{record.modificationDate.timeIntervalSinceReferenceDate};
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

NSArray<NSString*>* keyObjects(const ports::CloudDesiredKeys& keys)
{
    return keys ? stringObjects(*keys) : nil;
}

} // namespace sentrel::mac
