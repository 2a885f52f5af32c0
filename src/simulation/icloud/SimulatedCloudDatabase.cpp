#include "simulation/icloud/SimulatedCloudDatabase.hpp"

#include "simulation/icloud/AssetFolder.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/CloudLink.hpp"

#include <utility>

namespace sentrel::simulation {

using ports::CloudAsset;
using ports::CloudDesiredKeys;
using ports::CloudError;
using ports::CloudModification;
using ports::CloudQueryPage;
using ports::CloudRecord;
using ports::CloudRecordResult;

namespace {

using Results = std::map<std::string, CloudRecordResult>;

/// A page as the Mac gets it. Faults of single records strike only records in the page.
CloudQueryPage delivered(CloudLink& link, AssetFolder& assets, CloudOperation operation, ServerPage page)
{
    std::vector<std::string> names;
    names.reserve(page.results.size());
    for (const auto& [name, result] : page.results) {
        names.push_back(name);
    }
    const auto failed = link.faults().strike(operation, names);
    CloudQueryPage made;
    made.cursor = page.cursor;
    for (auto& [name, result] : page.results) {
        const auto failure = failed.find(name);
        made.results.emplace_back(name, failure == failed.end() ? assets.downloaded(std::move(result))
                                                                : CloudRecordResult{failure->second});
    }
    return made;
}

/// The saved record as the Mac gets it, with the asset files that it sent.
CloudRecordResult saved(AssetFolder& assets, ServerRecordResult result, const CloudRecord& sent)
{
    CloudRecordResult made = assets.downloaded(std::move(result));
    if (auto* const record = std::get_if<CloudRecord>(&made)) {
        for (const auto& [name, value] : sent.fields) {
            if (std::holds_alternative<CloudAsset>(value)) {
                record->fields.insert_or_assign(name, value);
            }
        }
    }
    return made;
}

} // namespace

SimulatedCloudDatabase::SimulatedCloudDatabase(CloudLink& link, const std::filesystem::path& assets)
    : link_(link), assets_(std::make_shared<AssetFolder>(assets))
{
}

Async<CloudQueryPage> SimulatedCloudDatabase::query(ports::CloudQuery query, CloudDesiredKeys desiredKeys,
                                                    std::size_t resultsLimit)
{
    auto serve = [&link = link_, assets = assets_, query = std::move(query), wanted = std::move(desiredKeys),
                  resultsLimit](const CloudDevice& who) {
        ServerPage page = link.server().query(who, query, wanted, resultsLimit);
        return delivered(link, *assets, CloudOperation::query, std::move(page));
    };
    return link_.request(CloudOperation::query, std::move(serve));
}

Async<CloudQueryPage> SimulatedCloudDatabase::continueQuery(std::shared_ptr<const ports::CloudQueryCursor> cursor,
                                                            CloudDesiredKeys desiredKeys, std::size_t resultsLimit)
{
    auto serve = [&link = link_, assets = assets_, cursor = std::move(cursor), wanted = std::move(desiredKeys),
                  resultsLimit](const CloudDevice& who) {
        ServerPage page = link.server().continueQuery(who, cursor.get(), wanted, resultsLimit);
        return delivered(link, *assets, CloudOperation::continueQuery, std::move(page));
    };
    return link_.request(CloudOperation::continueQuery, std::move(serve));
}

Async<Results> SimulatedCloudDatabase::records(std::vector<std::string> names, CloudDesiredKeys desiredKeys)
{
    auto serve = [&link = link_, assets = assets_, names = std::move(names),
                  wanted = std::move(desiredKeys)](const CloudDevice& who) {
        const auto failed = link.faults().strike(CloudOperation::fetch, names);
        Results made;
        for (auto& [name, result] : link.server().fetch(who, names, wanted)) {
            const auto failure = failed.find(name);
            made.emplace(name, failure == failed.end() ? assets->downloaded(std::move(result))
                                                       : CloudRecordResult{failure->second});
        }
        return made;
    };
    return link_.request(CloudOperation::fetch, std::move(serve));
}

Async<CloudModification> SimulatedCloudDatabase::modify(std::vector<CloudRecord> save,
                                                        std::vector<std::string> deleteNames,
                                                        ports::CloudSavePolicy policy, bool isAtomic)
{
    auto serve = [&link = link_, assets = assets_, save = std::move(save), deleteNames = std::move(deleteNames), policy,
                  isAtomic](const CloudDevice& who) {
        ServerBatch batch{{}, deleteNames, policy, isAtomic, {}};
        std::vector<std::string> names = deleteNames;
        for (const CloudRecord& record : save) {
            batch.save.push_back(assets->uploaded(record));
            names.push_back(record.name);
        }
        batch.refused = link.faults().strike(CloudOperation::modify, names);
        ServerModification done = link.server().modify(who, batch);
        CloudModification made;
        made.deleted = std::move(done.deleted);
        for (const CloudRecord& record : save) {
            made.saved.emplace(record.name, saved(*assets, std::move(done.saved.at(record.name)), record));
        }
        return made;
    };
    return link_.request(CloudOperation::modify, std::move(serve));
}

Async<CloudRecord> SimulatedCloudDatabase::record(std::string name)
{
    auto serve = [&link = link_, assets = assets_, name = std::move(name)](const CloudDevice& who) {
        auto results = link.server().fetch(who, {name}, std::nullopt);
        if (const auto* const error = std::get_if<CloudError>(&results.at(name))) {
            throw CloudError{*error};
        }
        return assets->downloaded(std::get<ServerRecord>(std::move(results.at(name))));
    };
    return link_.request(CloudOperation::fetchOne, std::move(serve));
}

Async<CloudRecord> SimulatedCloudDatabase::save(CloudRecord record)
{
    auto serve = [&link = link_, assets = assets_, record = std::move(record)](const CloudDevice& who) {
        ServerBatch batch;
        batch.save.push_back(assets->uploaded(record));
        ServerModification done = link.server().modify(who, batch);
        CloudRecordResult result = saved(*assets, std::move(done.saved.at(record.name)), record);
        if (const auto* const error = std::get_if<CloudError>(&result)) {
            throw CloudError{*error};
        }
        return std::get<CloudRecord>(std::move(result));
    };
    return link_.request(CloudOperation::save, std::move(serve));
}

Async<void> SimulatedCloudDatabase::saveSubscription(ports::CloudSubscription subscription)
{
    auto serve = [&link = link_, subscription = std::move(subscription)](const CloudDevice& who) {
        link.server().saveSubscription(who, subscription);
        return true;
    };
    co_await link_.request(CloudOperation::saveSubscription, std::move(serve));
}

} // namespace sentrel::simulation
