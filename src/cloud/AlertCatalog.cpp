#include "cloud/AlertCatalog.hpp"

#include "cloud/CloudErrors.hpp"
#include "cloud/RecordMerge.hpp"

#include <string>
#include <utility>
#include <vector>

namespace sentrel {

namespace {

using Texts = std::vector<std::string>;

std::optional<ports::CloudError> ifThrottling(const ports::CloudError& error)
{
    return isThrottlingError(error) ? std::optional{error} : std::nullopt;
}

bool isTruncated(const ports::CloudRecord& record)
{
    const auto* const flag = ports::fieldOf<std::int64_t>(record, AlertCatalog::isTruncatedField);
    return flag != nullptr && *flag != 0;
}

/// Applies the debts to the list; false when it needs no change.
bool merge(ports::CloudRecord& record, const CatalogDebts& debts)
{
    // Changed in place: the list may hold thousands of texts.
    ports::CloudValue& field = record.fields[AlertCatalog::alertIDsField];
    if (!std::holds_alternative<Texts>(field)) {
        field = Texts{};
    }
    auto& texts = std::get<Texts>(field);
    std::unordered_set<UUID> missing{debts.additions.begin(), debts.additions.end()};
    const std::size_t dropped = std::erase_if(texts, [&](const std::string& text) {
        const auto id = UUID::parse(text);
        if (id) {
            missing.erase(*id);
        }
        return !id || debts.removals.contains(*id);
    });
    if (dropped == 0 && missing.empty()) {
        return false;
    }
    for (const UUID& id : debts.additions) {
        if (missing.erase(id) > 0) {
            texts.push_back(id.text());
        }
    }
    if (texts.size() > AlertCatalog::mostIdentifiers) {
        texts.erase(texts.begin(), texts.end() - static_cast<std::ptrdiff_t>(AlertCatalog::mostIdentifiers));
        record.fields[AlertCatalog::isTruncatedField] = std::int64_t{1};
    }
    return true;
}

} // namespace

Async<ports::CloudRecord> AlertCatalog::read(ports::CloudDatabase& database)
{
    return recordOrNew(database, recordType, recordName);
}

Async<AlertCatalog::Reading> AlertCatalog::tryToRead(ports::CloudDatabase& database)
{
    Reading reading;
    try {
        reading.record = co_await read(database);
    } catch (const ports::CloudError& error) {
        reading.throttling = ifThrottling(error);
    }
    co_return reading;
}

std::optional<AlertCatalog::Contents> AlertCatalog::contentsOf(const ports::CloudRecord& record)
{
    const auto* const texts = ports::fieldOf<Texts>(record, alertIDsField);
    if (texts == nullptr) {
        return std::nullopt;
    }
    Contents contents;
    contents.isTruncated = sentrel::isTruncated(record);
    contents.ids.reserve(texts->size());
    for (const std::string& text : *texts) {
        if (const auto id = UUID::parse(text)) {
            contents.ids.insert(*id);
        }
    }
    return contents;
}

Async<std::optional<ports::CloudError>> AlertCatalog::payDebts(std::optional<ports::CloudRecord> fresh)
{
    if (cache_.debts().isEmpty()) {
        co_return std::nullopt;
    }
    const auto changes = cache_.watch();
    CatalogDebts paid;
    // Each attempt applies the current debts. One user's record must never be saved for another.
    RecordMerge merging = [&paid, &cache = cache_, changes](ports::CloudRecord& record) {
        paid = cache.debts();
        return !changes->isAnotherUser && merge(record, paid);
    };
    try {
        co_await mergeIntoRecord(database_, recordType, recordName, std::move(fresh), std::move(merging));
    } catch (const ports::CloudError& error) {
        co_return ifThrottling(error);
    }
    if (!changes->isAnotherUser) {
        cache_.settle(paid);
    }
    co_return std::nullopt;
}

} // namespace sentrel
