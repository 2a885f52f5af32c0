#include "simulation/icloud/BatchWriter.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"

namespace sentrel::simulation {

namespace {

std::uint64_t optionFor(PushReason reason)
{
    switch (reason) {
    case PushReason::recordCreated:
        return SubscriptionOption::firesOnRecordCreation;
    case PushReason::recordUpdated:
        return SubscriptionOption::firesOnRecordUpdate;
    case PushReason::recordDeleted:
        break;
    }
    return SubscriptionOption::firesOnRecordDeletion;
}

/// The error of a save that conflicts with the server's record, or none.
std::optional<ports::CloudError> conflict(const ServerRecord& record, const std::optional<CloudStore::Header>& known,
                                          ports::CloudSavePolicy policy)
{
    if (!known) {
        // A record with a tag was fetched once: it has been deleted since.
        return record.tag.empty() ? std::nullopt : std::optional{cloudError(CKError::unknownItem)};
    }
    if (known->type != record.type) {
        return cloudError(CKError::invalidArguments);
    }
    if (policy == ports::CloudSavePolicy::ifServerRecordUnchanged && known->tag != record.tag) {
        return cloudError(CKError::serverRecordChanged);
    }
    return std::nullopt;
}

} // namespace

ServerModification BatchWriter::apply(const ServerBatch& batch)
{
    ServerModification modification;
    for (const ServerRecord& record : batch.save) {
        const auto refused = batch.refused.find(record.name);
        ServerRecordResult result =
            refused == batch.refused.end() ? save(record, batch.policy) : ServerRecordResult{refused->second};
        modification.saved.emplace(record.name, std::move(result));
    }
    for (const std::string& name : batch.deleteNames) {
        const auto refused = batch.refused.find(name);
        ports::CloudDeleteResult result = refused == batch.refused.end() ? remove(name) : refused->second;
        modification.deleted.emplace(name, std::move(result));
    }
    return modification;
}

ServerRecordResult BatchWriter::save(const ServerRecord& record, ports::CloudSavePolicy policy)
{
    if (auto objection = objectionTo(record)) {
        return std::move(*objection);
    }
    const auto known = store_.find(record.name);
    if (auto clash = conflict(record, known, policy)) {
        return std::move(*clash);
    }
    auto stored = writeWithinQuota(record, known);
    if (!stored) {
        return cloudError(CKError::quotaExceeded);
    }
    notify(record.name, record.type, known ? PushReason::recordUpdated : PushReason::recordCreated);
    return *std::move(stored);
}

/// The record as stored, or none if the account is full.
std::optional<ServerRecord> BatchWriter::writeWithinQuota(const ServerRecord& record,
                                                          const std::optional<CloudStore::Header>& known)
{
    if (terms_.quota == Terms{}.quota) {
        return store_.write(record, known, terms_.now); // no limit, so no sums
    }
    SqliteDatabase& database = store_.database();
    const std::uint64_t before = store_.storedBytes();
    database.run("SAVEPOINT record");
    ServerRecord stored = store_.write(record, known, terms_.now);
    const std::uint64_t after = store_.storedBytes();
    // An account over its quota may still write if that needs no more room.
    const bool fits = after <= before || after <= terms_.quota;
    if (!fits) {
        database.run("ROLLBACK TO record");
    }
    database.run("RELEASE record");
    return fits ? std::optional{std::move(stored)} : std::nullopt;
}

ports::CloudDeleteResult BatchWriter::remove(const std::string& name)
{
    const auto known = store_.find(name);
    if (!known) {
        return cloudError(CKError::unknownItem);
    }
    notify(name, known->type, PushReason::recordDeleted);
    store_.remove(*known);
    return std::nullopt;
}

void BatchWriter::notify(const std::string& name, const std::string& type, PushReason reason)
{
    for (auto subscription = subscriptions_.begin(); subscription != subscriptions_.end();) {
        const bool fires = (subscription->options & optionFor(reason)) != 0 && subscription->recordType == type &&
                           store_.matches(name, subscription->recordType, conditionOf(subscription->predicate));
        if (fires) {
            const ServerRecord record = store_.readWithoutAssets(name).value_or(ServerRecord{});
            pushes_.push_back(pushDictionary(*subscription, record, reason, store_.nextNumber(), terms_.owner));
        }
        if (fires && (subscription->options & SubscriptionOption::firesOnce) != 0) {
            store_.removeSubscription(subscription->identifier);
            subscription = subscriptions_.erase(subscription);
        } else {
            ++subscription;
        }
    }
}

} // namespace sentrel::simulation
