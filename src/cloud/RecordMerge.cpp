#include "cloud/RecordMerge.hpp"

#include "cloud/CloudErrors.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr int mostAttempts = 5;

/// Saves the record; false when the server's record has changed.
Async<bool> saveIfUnchanged(ports::CloudDatabase& database, ports::CloudRecord record)
{
    try {
        co_await database.save(std::move(record));
    } catch (const ports::CloudError& error) {
        if (!isCloudKitError(error, CloudErrorCode::serverRecordChanged)) {
            throw;
        }
        co_return false;
    }
    co_return true;
}

} // namespace

Async<ports::CloudRecord> recordOrNew(ports::CloudDatabase& database, std::string type, std::string name)
{
    ports::CloudRecord record;
    try {
        record = co_await database.record(name);
    } catch (const ports::CloudError& error) {
        if (!isCloudKitError(error, CloudErrorCode::unknownItem)) {
            throw;
        }
        record.type = std::move(type);
        record.name = std::move(name);
    }
    co_return record;
}

Async<void> mergeIntoRecord(ports::CloudDatabase& database, std::string type, std::string name,
                            std::optional<ports::CloudRecord> fresh, RecordMerge merge)
{
    for (int attempt = 1; attempt <= mostAttempts; ++attempt) {
        if (!fresh) {
            fresh = co_await recordOrNew(database, type, name);
        }
        ports::CloudRecord record = *std::exchange(fresh, std::nullopt);
        if (!merge(record)) {
            co_return;
        }
        const bool isSaved = co_await saveIfUnchanged(database, std::move(record));
        if (isSaved) {
            co_return;
        }
    }
    throw ports::CloudError{ports::cloudErrorDomain, CloudErrorCode::serverRecordChanged,
                            "others keep changing the record " + name};
}

} // namespace sentrel
