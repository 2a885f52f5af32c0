#include "mac/Adapters.hpp"

#include "mac/cloud/CloudRecords.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/Guarded.hpp"
#include "mac/foundation/Wrapped.hpp"
#include "mac/security/Signature.hpp"
#include "runtime/Semaphore.hpp"

#import <CloudKit/CloudKit.h>

#include <utility>

namespace sentrel::mac {

using ports::CloudDesiredKeys;
using ports::CloudError;
using ports::CloudModification;
using ports::CloudQueryPage;
using ports::CloudRecord;
using ports::CloudRecordResult;

namespace {

/// Seconds that a request may wait for its next packet, and a whole operation with its files may take. Callers have
/// shorter limits; these end operations without a waiting task.
constexpr NSTimeInterval requestTimeout = 30.0;
constexpr NSTimeInterval resourceTimeout = 300.0;

/// An application's iCloud container, opened on first use. Main thread.
class CloudContainer {
public:
    explicit CloudContainer(std::string identifier) : identifier_(std::move(identifier)) {}

    /// Throws `CloudError` with code 8 (missing entitlement) in a build that isn't signed for iCloud: CloudKit itself
    /// would end the process.
    [[nodiscard]] CKContainer* open()
    {
        if (container_ == nil) {
            if (!isSignedWith(@"com.apple.developer.icloud-services")) {
                throw CloudError{textOf(CKErrorDomain), CKErrorMissingEntitlement,
                                 "this build is not signed for iCloud"};
            }
            container_ = [CKContainer containerWithIdentifier:stringObject(identifier_)];
        }
        return container_;
    }

private:
    const std::string identifier_;
    CKContainer* container_ = nil;
};

/// The framework's answer to one request. Its blocks write it, one after another on its own queue, and the last one
/// signals. Shared by the blocks and the waiting task.
template <class Answer> struct CloudRequest {
    Semaphore finished;
    Answer answer{};
    std::optional<CloudError> error; ///< of the request as a whole

    /// Moves out the answer, once finished. Throws `error` if set.
    Answer take()
    {
        if (error) {
            throw *error;
        }
        return std::move(answer);
    }
};

using RecordResults = std::map<std::string, CloudRecordResult>;
struct Nothing {};

// The framework can't cancel the account's two requests. Without a waiting task, their answer is dropped.

std::shared_ptr<CloudRequest<ports::CloudAccountStatus>> askForStatus(CKContainer* container)
{
    const auto request = std::make_shared<CloudRequest<ports::CloudAccountStatus>>();
    guardedCloudCall("accountStatus", [&] {
        [container accountStatusWithCompletionHandler:^(CKAccountStatus status, NSError* error) {
            request->answer = static_cast<ports::CloudAccountStatus>(status);
            if (error != nil) {
                request->error = cloudErrorOf(error);
            }
            request->finished.signal();
        }];
    });
    return request;
}

std::shared_ptr<CloudRequest<std::optional<std::string>>> askForUser(CKContainer* container)
{
    const auto request = std::make_shared<CloudRequest<std::optional<std::string>>>();
    guardedCloudCall("fetchUserRecordID", [&] {
        [container fetchUserRecordIDWithCompletionHandler:^(CKRecordID* recordID, NSError* error) {
            if (error != nil) {
                request->error = cloudErrorOf(error);
            } else {
                request->answer = optionalText(recordID.recordName);
            }
            request->finished.signal();
        }];
    });
    return request;
}

/// The account behind a container in iCloud.
class MacCloudAccount final : public ports::CloudAccount {
public:
    explicit MacCloudAccount(std::string container) : container_(std::move(container)) {}

    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override
    {
        const auto request = askForStatus(container_.open());
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override
    {
        const auto request = askForUser(container_.open());
        co_await request->finished.wait();
        co_return request->take();
    }

private:
    CloudContainer container_;
};

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

private:
    CKDatabaseOperation* const operation_;
};

/// A request that an operation answers.
template <class Answer> struct Sent {
    std::shared_ptr<CloudRequest<Answer>> request;
    std::unique_ptr<OperationHold> operation;
};

template <class Answer>
Sent<Answer> send(CKDatabase* database, CKDatabaseOperation* operation, std::shared_ptr<CloudRequest<Answer>> request)
{
    return {std::move(request), std::make_unique<OperationHold>(database, operation)};
}

/// Waits for the answer. Throws the request's error.
template <class Answer> Async<Answer> answerTo(Sent<Answer> sent)
{
    co_await sent.request->finished.wait();
    co_return sent.request->take();
}

using MacQueryCursor = Wrapped<ports::CloudQueryCursor, CKQueryCursor>;

/// The error of a whole request; none for a partial failure, whose items have their own.
std::optional<CloudError> wholeError(NSError* error)
{
    const bool isPartial = [error.domain isEqualToString:CKErrorDomain] && error.code == CKErrorPartialFailure;
    return error == nil || isPartial ? std::nullopt : std::optional{cloudErrorOf(error)};
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

CKQueryOperation* queryOperation(const ports::CloudQuery& query)
{
    CKQueryOperation* const operation = [[CKQueryOperation alloc] initWithQuery:queryObject(query)];
    operation.zoneID = [CKRecordZone defaultRecordZone].zoneID;
    return operation;
}

CKQueryOperation* queryOperation(const ports::CloudQueryCursor& cursor)
{
    return [[CKQueryOperation alloc] initWithCursor:MacQueryCursor::of(cursor)];
}

Sent<CloudQueryPage> startQuery(CKDatabase* database, CKQueryOperation* operation, const CloudDesiredKeys& desiredKeys,
                                std::size_t resultsLimit)
{
    const auto request = std::make_shared<CloudRequest<CloudQueryPage>>();
    operation.desiredKeys = keyObjects(desiredKeys);
    operation.resultsLimit = resultsLimit;
    operation.recordMatchedBlock = ^(CKRecordID* recordID, CKRecord* record, NSError* error) {
        request->answer.results.emplace_back(textOf(recordID.recordName), cloudResultOf(record, error));
    };
    operation.queryCompletionBlock = ^(CKQueryCursor* cursor, NSError* error) {
        request->error = wholeError(error);
        if (cursor != nil) {
            request->answer.cursor = std::make_shared<MacQueryCursor>(cursor);
        }
        request->finished.signal();
    };
    return send(database, operation, request);
}

Sent<RecordResults> startFetch(CKDatabase* database, const std::vector<std::string>& names,
                               const CloudDesiredKeys& desiredKeys)
{
    const auto request = std::make_shared<CloudRequest<RecordResults>>();
    const std::vector<std::string> asked = names;
    CKFetchRecordsOperation* const operation =
        [[CKFetchRecordsOperation alloc] initWithRecordIDs:recordIDObjects(names)];
    operation.desiredKeys = keyObjects(desiredKeys);
    operation.perRecordCompletionBlock = ^(CKRecord* record, CKRecordID* recordID, NSError* error) {
        if (recordID != nil) {
            request->answer.emplace(textOf(recordID.recordName), cloudResultOf(record, error));
        }
    };
    operation.fetchRecordsCompletionBlock = ^(NSDictionary<CKRecordID*, CKRecord*>* /*records*/, NSError* error) {
        request->error = wholeError(error);
        complete(request->answer, asked, error);
        request->finished.signal();
    };
    return send(database, operation, request);
}

struct Changes {
    std::vector<CloudRecord> save;
    std::vector<std::string> deleteNames;
    ports::CloudSavePolicy policy = ports::CloudSavePolicy::ifServerRecordUnchanged;
    bool isAtomic = false;
};

Sent<CloudModification> startModify(CKDatabase* database, const Changes& changes)
{
    const auto request = std::make_shared<CloudRequest<CloudModification>>();
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
        request->answer.saved.emplace(textOf(recordID.recordName), cloudResultOf(record, error));
    };
    operation.perRecordDeleteBlock = ^(CKRecordID* recordID, NSError* error) {
        ports::CloudDeleteResult result;
        if (error != nil) {
            result = cloudErrorOf(error);
        }
        request->answer.deleted.emplace(textOf(recordID.recordName), std::move(result));
    };
    operation.modifyRecordsCompletionBlock = ^(NSArray<CKRecord*>*, NSArray<CKRecordID*>*, NSError* error) {
        request->error = wholeError(error);
        complete(request->answer.saved, saveNames, error);
        complete(request->answer.deleted, deleteNames, error);
        request->finished.signal();
    };
    return send(database, operation, request);
}

Sent<Nothing> startSubscription(CKDatabase* database, const ports::CloudSubscription& subscription)
{
    const auto request = std::make_shared<CloudRequest<Nothing>>();
    const std::string identifier = subscription.identifier;
    CKModifySubscriptionsOperation* const operation =
        [[CKModifySubscriptionsOperation alloc] initWithSubscriptionsToSave:@[ subscriptionObject(subscription) ]
                                                    subscriptionIDsToDelete:nil];
    operation.modifySubscriptionsCompletionBlock = ^(NSArray<CKSubscription*>*, NSArray<NSString*>*, NSError* error) {
        if (error != nil) {
            request->error = errorFor(identifier, cloudErrorOf(error));
        }
        request->finished.signal();
    };
    return send(database, operation, request);
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

/// The private database of a container in iCloud. Cursors passed in must come from here.
class MacCloudDatabase final : public ports::CloudDatabase {
public:
    explicit MacCloudDatabase(std::string container) : container_(std::move(container)) {}

    [[nodiscard]] Async<CloudQueryPage> query(ports::CloudQuery query, CloudDesiredKeys desiredKeys,
                                              std::size_t resultsLimit) override
    {
        co_return co_await answerTo(startQuery(database(), queryOperation(query), desiredKeys, resultsLimit));
    }

    [[nodiscard]] Async<CloudQueryPage> continueQuery(std::shared_ptr<const ports::CloudQueryCursor> cursor,
                                                      CloudDesiredKeys desiredKeys, std::size_t resultsLimit) override
    {
        co_return co_await answerTo(startQuery(database(), queryOperation(*cursor), desiredKeys, resultsLimit));
    }

    [[nodiscard]] Async<RecordResults> records(std::vector<std::string> names, CloudDesiredKeys desiredKeys) override
    {
        co_return co_await answerTo(startFetch(database(), names, desiredKeys));
    }

    [[nodiscard]] Async<CloudModification> modify(std::vector<CloudRecord> save, std::vector<std::string> deleteNames,
                                                  ports::CloudSavePolicy policy, bool isAtomic) override
    {
        const Changes changes{std::move(save), std::move(deleteNames), policy, isAtomic};
        co_return co_await answerTo(startModify(database(), changes));
    }

    [[nodiscard]] Async<CloudRecord> record(std::string name) override
    {
        const std::vector<std::string> names{name};
        auto results = co_await answerTo(startFetch(database(), names, std::nullopt));
        co_return onlyRecord(std::move(results), name);
    }

    [[nodiscard]] Async<CloudRecord> save(CloudRecord record) override
    {
        const std::string name = record.name;
        Changes changes;
        changes.save.push_back(std::move(record));
        auto done = co_await answerTo(startModify(database(), changes));
        co_return onlyRecord(std::move(done.saved), name);
    }

    [[nodiscard]] Async<void> saveSubscription(ports::CloudSubscription subscription) override
    {
        co_await answerTo(startSubscription(database(), subscription));
    }

private:
    [[nodiscard]] CKDatabase* database() { return container_.open().privateCloudDatabase; }

    CloudContainer container_;
};

} // namespace

std::unique_ptr<ports::CloudAccount> makeCloudAccount(std::string container)
{
    return std::make_unique<MacCloudAccount>(std::move(container));
}

std::unique_ptr<ports::CloudDatabase> makeCloudDatabase(std::string container)
{
    return std::make_unique<MacCloudDatabase>(std::move(container));
}

} // namespace sentrel::mac
