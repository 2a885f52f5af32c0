#include "cloud/AlertCatalog.hpp"

#include "cloud/CloudErrors.hpp"
#include "cloud/RecordMerge.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace sentrel {

namespace {

std::optional<ports::CloudError> ifThrottling(const ports::CloudError& error)
{
    return isThrottlingError(error) ? std::optional{error} : std::nullopt;
}

/// The list without the identifiers given, and without texts that are none.
TextList without(const std::unordered_set<UUID>& removed, const TextList& texts)
{
    TextListWriter kept;
    for (const std::string_view text : texts) {
        const auto id = UUID::parse(text);
        if (id && !removed.contains(*id)) {
            kept.add(text);
        }
    }
    return kept.take();
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

CatalogMirror::List AlertCatalog::listOf(const ports::CloudRecord& record)
{
    CatalogMirror::List list;
    if (const auto* const texts = ports::fieldOf<TextList>(record, alertIDsField)) {
        const auto* const flag = ports::fieldOf<std::int64_t>(record, isTruncatedField);
        list.texts = *texts;
        list.isThere = true;
        list.isTruncated = flag != nullptr && *flag != 0;
    }
    return list;
}

/// Applies the debts to the record; false when it needs no change.
bool AlertCatalog::merge(ports::CloudRecord& record, const CatalogDebts& debts)
{
    TextList texts = listOf(record).texts;
    mirror_.follow(mirror_.finderOfStep(listOf(record))());
    const auto isListed = [this](const UUID& id) { return mirror_.lists(id); };
    bool isChanged = false;
    if (!mirror_.isPlain() || std::ranges::any_of(debts.removals, isListed)) {
        const TextList all = std::exchange(texts, without(debts.removals, texts));
        isChanged = texts.size() < all.size();
    }
    std::unordered_set<UUID> added;
    std::vector<std::string> additions;
    for (const UUID& id : debts.additions) {
        if (!isListed(id) && added.insert(id).second) {
            additions.push_back(id.text());
        }
    }
    if (!isChanged && additions.empty()) {
        return false;
    }
    texts = texts.with(additions);
    if (texts.size() > mostIdentifiers) {
        texts = texts.from(texts.size() - mostIdentifiers);
        record.fields[isTruncatedField] = std::int64_t{1};
    }
    record.fields[alertIDsField] = std::move(texts);
    return true;
}

Async<std::optional<ports::CloudError>> AlertCatalog::payDebts(std::optional<ports::CloudRecord> fresh)
{
    if (cache_.debts().isEmpty()) {
        co_return std::nullopt;
    }
    const auto changes = cache_.watch();
    CatalogDebts paid;
    // Each attempt applies the current debts. One user's record must never be saved for another.
    RecordMerge merging = [this, &paid, changes](ports::CloudRecord& record) {
        paid = cache_.debts();
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
