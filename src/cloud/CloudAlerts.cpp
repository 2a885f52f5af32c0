#include "cloud/CloudAlerts.hpp"

#include "cloud/AlertRecord.hpp"
#include "cloud/AlertRefresh.hpp"
#include "cloud/CloudErrors.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/FileSystem.hpp"
#include "ports/HostInfo.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sentrel {

namespace {

using ItemErrors = std::map<std::string, ports::CloudError>;

/// The errors of the records that are still in the database.
ItemErrors errorsOf(const ports::CloudModification& answer, const std::unordered_set<UUID>& ids)
{
    ItemErrors errors;
    for (const UUID& id : ids) {
        const auto found = answer.deleted.find(id.text());
        if (found == answer.deleted.end()) {
            errors.emplace(id.text(), ports::CloudError{ports::cloudErrorDomain, CloudErrorCode::internalError,
                                                        "the server's answer omits the record"});
        } else if (found->second && !isCloudKitError(*found->second, CloudErrorCode::unknownItem)) {
            errors.emplace(id.text(), *found->second);
        }
    }
    return errors;
}

/// Combines the errors of a request's records.
ports::CloudError errorOf(const ItemErrors& errors)
{
    // Throttling comes first: the backoff depends on it.
    for (const auto& [name, error] : errors) {
        if (isThrottlingError(error)) {
            return error;
        }
    }
    ports::CloudError partial{ports::cloudErrorDomain, CloudErrorCode::partialFailure, "some records were not deleted"};
    partial.itemErrors = errors;
    return partial;
}

} // namespace

CloudAlerts::CloudAlerts(MainActor actor, Ports ports, UploadPhotoFiles::Ports photoPorts,
                         std::filesystem::path cacheDirectory, std::optional<std::string> owner)
    : actor_(actor),
      ports_(ports),
      cache_(actor, ports.files, ports.journal, std::move(cacheDirectory), std::move(owner)),
      catalog_(ports.database, cache_),
      photoFiles_(actor, photoPorts),
      reading_(actor.scheduler())
{
}

std::vector<AlertEvent> CloudAlerts::cached() const
{
    std::vector<AlertEvent> alerts;
    alerts.reserve(cache_.alerts().size());
    for (const auto& [id, alert] : cache_.alerts()) {
        alerts.push_back(alert);
    }
    return alerts;
}

const AlertEvent* CloudAlerts::cached(const UUID& id) const
{
    const auto found = cache_.alerts().find(id);
    return found == cache_.alerts().end() ? nullptr : &found->second;
}

Async<CloudAlerts::Throttling> CloudAlerts::upload(AlertEvent alert, std::optional<Bytes> photo)
{
    const auto changes = cache_.watch();
    ports::CloudRecord record = alertRecord(alert, ports_.host.localizedName().value_or("Mac"), ports_.language);
    std::optional<UploadPhotoFiles::File> file;
    if (photo) {
        Bytes content = *std::move(photo);
        auto written = co_await photoFiles_.write(std::move(content));
        file.emplace(std::move(written));
        record.fields[alertPhotoField] = ports::CloudAsset{file->path()};
    }
    const auto uploaded = alertOf(record);

    // Reads the catalog while the record is saved, so that the addition afterwards takes one request only.
    const auto bookkeeping = actor_.spawn(AlertCatalog::tryToRead(ports_.database));
    try {
        co_await save(std::move(record));
    } catch (const std::exception&) {
        bookkeeping.cancel();
        throw;
    }
    if (changes->isAnotherUser) {
        co_return std::nullopt; // the alert is in the previous user's database
    }
    // Before the next await: no later failure may hide that the alert is saved.
    if (uploaded) {
        cache_.insert({{alert.id, *uploaded}});
        cache_.oweAdditions({alert.id});
    }
    AlertCatalog::Reading catalog = co_await bookkeeping;
    if (catalog.record && !changes->isAnotherUser) {
        catalog.throttling = co_await settleDebts(std::move(catalog.record));
    } else {
        co_await cache_.flush();
    }
    co_return std::move(catalog.throttling);
}

/// An alert that exists already counts as saved: the answer to an earlier attempt was lost.
Async<void> CloudAlerts::save(ports::CloudRecord record)
{
    try {
        co_await ports_.database.save(std::move(record));
    } catch (const ports::CloudError& error) {
        if (!isCloudKitError(error, CloudErrorCode::serverRecordChanged)) {
            throw;
        }
    }
}

/// Unpaid debts reach the disk before the caller learns that the alert is safe, or gone.
Async<CloudAlerts::Throttling> CloudAlerts::settleDebts(std::optional<ports::CloudRecord> catalog)
{
    Throttling throttling = co_await catalog_.payDebts(std::move(catalog));
    if (!cache_.debts().isEmpty()) {
        co_await cache_.flush();
    }
    co_return throttling;
}

Async<CloudAlerts::Throttling> CloudAlerts::refresh()
{
    AlertRefresh refresh{actor_.scheduler(), ports_.database, catalog_, cache_, unusable_};
    co_return co_await refresh.run();
}

Async<std::optional<Bytes>> CloudAlerts::photo(UUID id)
{
    const auto changes = cache_.watch();
    std::vector<std::string> names(1, id.text());
    std::vector<std::string> keys(1, alertPhotoField);
    const auto results = co_await ports_.database.records(std::move(names), std::move(keys));
    const auto found = results.find(id.text());
    if (found == results.end() || changes->isAnotherUser) {
        co_return std::nullopt;
    }
    if (const auto* const error = std::get_if<ports::CloudError>(&found->second)) {
        if (!isCloudKitError(*error, CloudErrorCode::unknownItem)) {
            throw ports::CloudError{*error};
        }
        if (!changes->ids.contains(id)) {
            forget({id});
        }
        co_return std::nullopt;
    }
    const auto& record = std::get<ports::CloudRecord>(found->second);
    const auto* const asset = ports::fieldOf<ports::CloudAsset>(record, alertPhotoField);
    cache_.setPhoto(id, asset != nullptr);
    if (asset == nullptr) {
        co_return std::nullopt;
    }
    auto work = [&files = ports_.files, held = *asset] { return files.read(held.file); };
    const auto reading = reading_.start(QualityOfService::userInitiated, std::move(work));
    co_return co_await reading;
}

Async<CloudAlerts::Deletion> CloudAlerts::remove(std::unordered_set<UUID> ids)
{
    const auto changes = cache_.watch();
    std::vector<std::string> names;
    std::ranges::transform(ids, std::back_inserter(names), [](const UUID& id) { return id.text(); });
    std::vector<ports::CloudRecord> nothing;
    Deletion deletion;
    ports::CloudModification answer;
    try {
        answer = co_await ports_.database.modify(std::move(nothing), std::move(names),
                                                 ports::CloudSavePolicy::ifServerRecordUnchanged, false);
    } catch (const ports::CloudError&) {
        deletion.error = std::current_exception();
    }
    if (deletion.error != nullptr) {
        co_await cache_.flush();
        co_return deletion;
    }
    const ItemErrors errors = errorsOf(answer, ids);
    std::ranges::copy_if(ids, std::inserter(deletion.gone, deletion.gone.end()),
                         [&](const UUID& id) { return !errors.contains(id.text()); });
    if (!changes->isAnotherUser && !deletion.gone.empty()) {
        forget(deletion.gone);
    }
    if (!errors.empty()) {
        deletion.error = std::make_exception_ptr(errorOf(errors));
    }
    deletion.throttling = co_await settleDebts(std::nullopt);
    co_return deletion;
}

void CloudAlerts::forget(const std::unordered_set<UUID>& ids)
{
    cache_.erase(ids);
    cache_.oweRemovals(ids);
}

void CloudAlerts::startOver(std::string owner)
{
    unusable_.clear();
    cache_.startOver(std::move(owner));
}

} // namespace sentrel
