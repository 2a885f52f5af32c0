#include "mac/cloud/Cloud.hpp"

#include "mac/cloud/CloudContainer.hpp"
#include "mac/cloud/CloudRecords.hpp"
#include "mac/cloud/CloudRequest.hpp"
#include "mac/foundation/FoundationText.hpp"
#include "mac/foundation/Guarded.hpp"

#include <memory>

namespace sentrel::mac {

using ports::CloudDeleteResult;
using ports::CloudDesiredKeys;
using ports::CloudError;
using ports::CloudModification;
using ports::CloudQueryPage;
using ports::CloudRecord;
using ports::CloudRecordResult;

namespace {

using RecordResults = std::map<std::string, CloudRecordResult>;
using PageRequest = CloudRequest<CloudQueryPage>;
using FetchRequest = CloudRequest<RecordResults>;
using ModifyRequest = CloudRequest<CloudModification>;
struct Nothing {};
using SubscriptionRequest = CloudRequest<Nothing>;

/// Seconds that a request may wait for its next packet, and a whole operation with its files may take. Callers have
/// shorter limits; these end operations without a waiting task.
constexpr NSTimeInterval requestTimeout = 30.0;
constexpr NSTimeInterval resourceTimeout = 300.0;

/// An operation under way, cancelled when its waiting task ends. No effect once finished.
class OperationHold {
public:
    /// Sends the operation to the database.
    OperationHold(CKDatabase* database, CKDatabaseOperation* operation) : operation_(operation)
    {
        CKOperationConfiguration* const configuration = [[CKOperationConfiguration alloc] init];
        // An alarm can't wait until the system has time.
        configuration.qualityOfService = NSQualityOfServiceUserInitiated;
        configuration.timeoutIntervalForRequest = requestTimeout;
        configuration.timeoutIntervalForResource = resourceTimeout;
        operation_.configuration = configuration;
        guardedCloudCall("addOperation", [&] { [database addOperation:operation_]; });
    }
    ~OperationHold() { [operation_ cancel]; }
    OperationHold(const OperationHold&) = delete;
    OperationHold& operator=(const OperationHold&) = delete;

private:
    CKDatabaseOperation* const operation_;
};

class MacQueryCursor final : public ports::CloudQueryCursor {
public:
    explicit MacQueryCursor(CKQueryCursor* cursor) : cursor_(cursor) {}
    [[nodiscard]] CKQueryCursor* native() const { return cursor_; }

private:
    CKQueryCursor* const cursor_;
};

bool isPartialFailure(NSError* error)
{
    return [error.domain isEqualToString:CKErrorDomain] && error.code == CKErrorPartialFailure;
}

/// An item's error: its own, or the request's.
const CloudError& errorFor(const std::string& name, const CloudError& whole)
{
    const auto found = whole.itemErrors.find(name);
    return found == whole.itemErrors.end() ? whole : found->second;
}

/// Gives every name without a result its error.
template <class Results> void complete(Results& results, const std::vector<std::string>& names, NSError* error)
{
    const CloudError whole = cloudErrorOf(error);
    for (const std::string& name : names) {
        if (!results.contains(name)) {
            results.emplace(name, errorFor(name, whole));
        }
    }
}

OperationHold startQuery(CKDatabase* database, CKQueryOperation* operation, const std::shared_ptr<PageRequest>& request,
                         const CloudDesiredKeys& desiredKeys, std::size_t resultsLimit)
{
    const std::shared_ptr<PageRequest> shared = request;
    operation.desiredKeys = keyObjects(desiredKeys);
    operation.resultsLimit = resultsLimit;
    operation.recordMatchedBlock = ^(CKRecordID* recordID, CKRecord* record, NSError* error) {
        shared->answer.results.emplace_back(textOf(recordID.recordName), cloudResultOf(record, error));
    };
    operation.queryCompletionBlock = ^(CKQueryCursor* cursor, NSError* error) {
        if (error != nil && !isPartialFailure(error)) {
            shared->error = cloudErrorOf(error);
        }
        if (cursor != nil) {
            shared->answer.cursor = std::make_shared<MacQueryCursor>(cursor);
        }
        shared->finished.signal();
    };
    return {database, operation};
}

OperationHold startFetch(CKDatabase* database, const std::vector<std::string>& names,
                         const CloudDesiredKeys& desiredKeys, const std::shared_ptr<FetchRequest>& request)
{
    const std::shared_ptr<FetchRequest> shared = request;
    const std::vector<std::string> asked = names;
    CKFetchRecordsOperation* const operation =
        [[CKFetchRecordsOperation alloc] initWithRecordIDs:recordIDObjects(names)];
    operation.desiredKeys = keyObjects(desiredKeys);
    operation.perRecordCompletionBlock = ^(CKRecord* record, CKRecordID* recordID, NSError* error) {
        if (recordID != nil) {
            shared->answer.emplace(textOf(recordID.recordName), cloudResultOf(record, error));
        }
    };
    operation.fetchRecordsCompletionBlock = ^(NSDictionary<CKRecordID*, CKRecord*>* /*records*/, NSError* error) {
        if (error != nil && !isPartialFailure(error)) {
            shared->error = cloudErrorOf(error);
        }
        complete(shared->answer, asked, error);
        shared->finished.signal();
    };
    return {database, operation};
}

struct Changes {
    std::vector<CloudRecord> save;
    std::vector<std::string> deleteNames;
    ports::CloudSavePolicy policy = ports::CloudSavePolicy::ifServerRecordUnchanged;
    bool isAtomic = false;
};

OperationHold startModify(CKDatabase* database, const Changes& changes, const std::shared_ptr<ModifyRequest>& request)
{
    const std::shared_ptr<ModifyRequest> shared = request;
    std::vector<std::string> saveNames;
    for (const CloudRecord& record : changes.save) {
        saveNames.push_back(record.name);
    }
    const std::vector<std::string> deleteNames = changes.deleteNames;
    CKModifyRecordsOperation* const operation =
        [[CKModifyRecordsOperation alloc] initWithRecordsToSave:recordObjects(changes.save)
                                              recordIDsToDelete:recordIDObjects(deleteNames)];
    operation.savePolicy = static_cast<CKRecordSavePolicy>(changes.policy);
    operation.atomic = changes.isAtomic;
    operation.perRecordSaveBlock = ^(CKRecordID* recordID, CKRecord* record, NSError* error) {
        shared->answer.saved.emplace(textOf(recordID.recordName), cloudResultOf(record, error));
    };
    operation.perRecordDeleteBlock = ^(CKRecordID* recordID, NSError* error) {
        CloudDeleteResult result;
        if (error != nil) {
            result = cloudErrorOf(error);
        }
        shared->answer.deleted.emplace(textOf(recordID.recordName), std::move(result));
    };
    operation.modifyRecordsCompletionBlock = ^(NSArray<CKRecord*>*, NSArray<CKRecordID*>*, NSError* error) {
        if (error != nil && !isPartialFailure(error)) {
            shared->error = cloudErrorOf(error);
        }
        complete(shared->answer.saved, saveNames, error);
        complete(shared->answer.deleted, deleteNames, error);
        shared->finished.signal();
    };
    return {database, operation};
}

OperationHold startSubscription(CKDatabase* database, const ports::CloudSubscription& subscription,
                                const std::shared_ptr<SubscriptionRequest>& request)
{
    const std::shared_ptr<SubscriptionRequest> shared = request;
    const std::string identifier = subscription.identifier;
    CKModifySubscriptionsOperation* const operation =
        [[CKModifySubscriptionsOperation alloc] initWithSubscriptionsToSave:@[ subscriptionObject(subscription) ]
                                                    subscriptionIDsToDelete:nil];
    operation.modifySubscriptionsCompletionBlock = ^(NSArray<CKSubscription*>*, NSArray<NSString*>*, NSError* error) {
        if (error != nil) {
            shared->error = errorFor(identifier, cloudErrorOf(error));
        }
        shared->finished.signal();
    };
    return {database, operation};
}

/// The record of the only result. Throws its error.
CloudRecord onlyRecord(RecordResults results, const std::string& name)
{
    const auto found = results.find(name);
    if (found == results.end()) {
        throw cloudErrorOf(nil);
    }
    if (const auto* const error = std::get_if<CloudError>(&found->second)) {
        throw *error;
    }
    return std::get<CloudRecord>(std::move(found->second));
}

CKQueryOperation* queryOperation(const ports::CloudQuery& query)
{
    CKQueryOperation* const operation = [[CKQueryOperation alloc] initWithQuery:queryObject(query)];
    operation.zoneID = [CKRecordZone defaultRecordZone].zoneID;
    return operation;
}

CKQueryOperation* queryOperation(const ports::CloudQueryCursor& cursor)
{
    return [[CKQueryOperation alloc] initWithCursor:static_cast<const MacQueryCursor&>(cursor).native()];
}

/// The private database of a container in iCloud. Cursors passed in must come from here.
class MacCloudDatabase final : public ports::CloudDatabase {
public:
    explicit MacCloudDatabase(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
    [[nodiscard]] Async<ports::CloudQueryPage> query(ports::CloudQuery query, ports::CloudDesiredKeys desiredKeys,
                                                     std::size_t resultsLimit) override
    {
        const auto request = std::make_shared<PageRequest>();
        const auto operation = startQuery(database(), queryOperation(query), request, desiredKeys, resultsLimit);
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<ports::CloudQueryPage> continueQuery(std::shared_ptr<const ports::CloudQueryCursor> cursor,
                                                             ports::CloudDesiredKeys desiredKeys,
                                                             std::size_t resultsLimit) override
    {
        const auto request = std::make_shared<PageRequest>();
        const auto operation = startQuery(database(), queryOperation(*cursor), request, desiredKeys, resultsLimit);
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<std::map<std::string, ports::CloudRecordResult>>
    records(std::vector<std::string> names, ports::CloudDesiredKeys desiredKeys) override
    {
        const auto request = std::make_shared<FetchRequest>();
        const auto operation = startFetch(database(), names, desiredKeys, request);
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<ports::CloudModification> modify(std::vector<ports::CloudRecord> save,
                                                         std::vector<std::string> deleteNames,
                                                         ports::CloudSavePolicy policy, bool isAtomic) override
    {
        const auto request = std::make_shared<ModifyRequest>();
        const Changes changes{std::move(save), std::move(deleteNames), policy, isAtomic};
        const auto operation = startModify(database(), changes, request);
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<ports::CloudRecord> record(std::string name) override
    {
        const auto request = std::make_shared<FetchRequest>();
        const auto operation = startFetch(database(), {name}, std::nullopt, request);
        co_await request->finished.wait();
        co_return onlyRecord(request->take(), name);
    }

    [[nodiscard]] Async<ports::CloudRecord> save(ports::CloudRecord record) override
    {
        const auto request = std::make_shared<ModifyRequest>();
        const std::string name = record.name;
        Changes changes;
        changes.save.push_back(std::move(record));
        const auto operation = startModify(database(), changes, request);
        co_await request->finished.wait();
        co_return onlyRecord(request->take().saved, name);
    }

    [[nodiscard]] Async<void> saveSubscription(ports::CloudSubscription subscription) override
    {
        const auto request = std::make_shared<SubscriptionRequest>();
        const auto operation = startSubscription(database(), subscription, request);
        co_await request->finished.wait();
        request->take();
    }

private:
    [[nodiscard]] CKDatabase* database() { return container_.open().privateCloudDatabase; }

    CloudContainer container_;
};

} // namespace

std::unique_ptr<ports::CloudDatabase> makeCloudDatabase(std::string containerIdentifier)
{
    return std::make_unique<MacCloudDatabase>(std::move(containerIdentifier));
}

} // namespace sentrel::mac
