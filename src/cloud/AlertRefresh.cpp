#include "cloud/AlertRefresh.hpp"

#include "cloud/AlertRecord.hpp"
#include "cloud/CloudErrors.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Sleep.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sentrel {

Async<std::optional<ports::CloudError>> AlertRefresh::run()
{
    auto changes = cache_.watch();
    const auto record = co_await readCatalog();
    if (!cache_.isComplete() || !hasList_) {
        co_await queryAll();
    }
    co_await fetch(unknownIDs());
    const bool isCancelled = co_await isTaskCancelled();
    if (isCancelled) {
        throw CancellationError{};
    }
    if (changes->isAnotherUser) {
        co_return std::nullopt;
    }
    const std::unordered_set<UUID> newer = changes->ids;
    changes.reset();
    apply(newer);
    changes = cache_.watch();
    co_await sleepFor(Duration::zero()); // let the main thread run: `apply` may have handled thousands
    std::optional<ports::CloudError> throttling;
    if (!changes->isAnotherUser) {
        throttling = co_await catalog_.payDebts(std::move(*record));
    }
    co_return throttling;
}

/// Reads the catalog. Its list, maybe of thousands, is read off the main thread.
Async<std::shared_ptr<ports::CloudRecord>> AlertRefresh::readCatalog()
{
    ports::CloudRecord record = co_await AlertCatalog::read(database_);
    const auto shared = std::make_shared<ports::CloudRecord>(std::move(record));
    const CatalogMirror::List list = AlertCatalog::listOf(*shared);
    hasList_ = list.isThere;
    bool isFollowed = false;
    while (!isFollowed) { // once more if an upload or another refresh was quicker
        auto work = [find = catalog_.mirror().finderOfStep(list)] {
            return std::make_shared<CatalogMirror::Step>(find());
        };
        const auto finding = detached(scheduler_, QualityOfService::userInitiated, std::move(work));
        const auto step = co_await finding;
        isFollowed = catalog_.mirror().follow(std::move(*step));
    }
    co_return shared;
}

Async<void> AlertRefresh::queryAll()
{
    ports::CloudQuery query;
    query.recordType = alertRecordType;
    ports::CloudQueryPage page = co_await database_.query(std::move(query), alertListKeys(), batchSize);
    for (;;) {
        for (const auto& [name, result] : page.results) {
            note(name, result);
        }
        if (page.cursor == nullptr) {
            break;
        }
        page = co_await database_.continueQuery(page.cursor, alertListKeys(), batchSize);
    }
    hasQueried_ = true;
}

/// The alerts to fetch one by one: listed, and neither cached nor found by the query.
std::vector<UUID> AlertRefresh::unknownIDs()
{
    if (!hasList_) {
        return {};
    }
    CatalogMirror& mirror = catalog_.mirror();
    std::vector<UUID> ids =
        hasQueried_ ? std::vector<UUID>{mirror.ids().begin(), mirror.ids().end()} : mirror.uncached();
    std::erase_if(ids, [this](const UUID& id) {
        return found_.contains(id) || unusable_.contains(id) || unreadable_.contains(id) ||
               cache_.debts().removals.contains(id);
    });
    return ids;
}

Async<void> AlertRefresh::fetch(std::vector<UUID> ids)
{
    for (std::size_t start = 0; start < ids.size(); start += batchSize) {
        std::vector<std::string> names;
        for (std::size_t i = start; i < std::min(start + batchSize, ids.size()); ++i) {
            names.push_back(ids[i].text());
        }
        const auto results = co_await database_.records(std::move(names), alertListKeys());
        for (const auto& [name, result] : results) {
            note(name, result);
        }
    }
}

void AlertRefresh::note(const std::string& name, const ports::CloudRecordResult& result)
{
    const auto id = UUID::parse(name);
    if (!id) {
        return;
    }
    if (const auto* const error = std::get_if<ports::CloudError>(&result)) {
        if (isCloudKitError(*error, CloudErrorCode::unknownItem)) {
            gone_.insert(*id);
        } else if (isNetworkError(*error) || isThrottlingError(*error)) {
            throw ports::CloudError{*error}; // the others would fail too
        } else {
            unreadable_.insert(*id);
        }
        return;
    }
    if (auto alert = alertOf(std::get<ports::CloudRecord>(result))) {
        found_.insert_or_assign(*id, *std::move(alert));
    } else {
        unusable_.insert(*id);
    }
}

void AlertRefresh::apply(const std::unordered_set<UUID>& newer)
{
    const auto isNewer = [&](const UUID& id) { return newer.contains(id) || cache_.debts().removals.contains(id); };
    std::erase_if(found_, [&](const auto& entry) { return isNewer(entry.first); });
    std::erase_if(unreadable_, isNewer);
    std::erase_if(gone_, isNewer);
    dropDeleted(newer);
    if (!gone_.empty()) {
        cache_.oweRemovals(gone_);
    }
    if (hasQueried_) {
        oweUnlisted();
        cache_.setComplete();
    }
    if (!found_.empty()) {
        cache_.insert(std::move(found_));
    }
    catalog_.mirror().noteReconciled();
}

void AlertRefresh::dropDeleted(const std::unordered_set<UUID>& newer)
{
    CatalogMirror& mirror = catalog_.mirror();
    if (!hasQueried_ && (mirror.list().isTruncated || !mirror.list().isThere)) {
        return;
    }
    std::vector<UUID> suspects = mirror.unlisted();
    suspects.insert(suspects.end(), gone_.begin(), gone_.end());
    const std::vector<UUID>& additions = cache_.debts().additions;
    const std::unordered_set<UUID> owed{additions.begin(), additions.end()};
    std::unordered_set<UUID> deleted;
    for (const UUID& id : suspects) {
        // This Mac has saved the owed alerts, and a query may not show recent saves yet.
        const bool exists = owed.contains(id) || found_.contains(id) || unreadable_.contains(id);
        if (!exists && !newer.contains(id) && cache_.alerts().contains(id)) {
            deleted.insert(id);
        }
    }
    if (!deleted.empty()) {
        cache_.erase(deleted);
    }
}

void AlertRefresh::oweUnlisted()
{
    const CatalogMirror& mirror = catalog_.mirror();
    if (mirror.list().isTruncated) {
        return; // unlisted ones were dropped as too old
    }
    const auto isUnlisted = [&](const UUID& id) { return !mirror.lists(id); };
    std::vector<std::pair<Date, UUID>> unlisted;
    for (const auto& [id, alert] : found_) {
        if (isUnlisted(id)) {
            unlisted.emplace_back(alert.timestamp, id);
        }
    }
    std::ranges::sort(unlisted);
    std::vector<UUID> additions;
    std::ranges::copy_if(unreadable_, std::back_inserter(additions), isUnlisted);
    std::ranges::transform(unlisted, std::back_inserter(additions), [](const auto& entry) { return entry.second; });
    if (!additions.empty()) {
        cache_.oweAdditions(additions);
    }
}

} // namespace sentrel
