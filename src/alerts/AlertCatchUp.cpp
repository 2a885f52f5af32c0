#include "alerts/MacAlertsService.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "platform/FileSystem.hpp"
#include "runtime/Detached.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <utility>

// What waits for iCloud: deletions that it has not confirmed, and alerts that it does not hold yet.

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// For one batch of deletions.
constexpr Duration longestDeletion = 15s;

/// So many deletions share a deadline: what a batch has achieved is remembered before the next one begins.
constexpr std::size_t batchSize = 200;

/// A photo's file as an upload finds it.
struct PhotoFile {
    bool isThere = false;
    std::optional<Bytes> content;
};

PhotoFile readPhoto(platform::FileSystem& files, const std::filesystem::path& file)
{
    return {files.exists(file), files.read(file)};
}

} // namespace

void MacAlertsService::deleteAlerts(const std::unordered_set<UUID>& ids)
{
    if (ids.empty()) {
        return;
    }
    localStore_.remove(ids);
    pendingDeletions_.add(ids);
    uploader_.discard(ids);
    std::vector<AlertRow> kept;
    std::copy_if(alerts.get()->begin(), alerts.get()->end(), std::back_inserter(kept),
                 [&ids](const AlertRow& row) { return !ids.contains(row.alert.id); });
    publish(std::move(kept));
    refreshStorageNotice();
    uploadsCaughtUp_();
    deletions_.start();
}

Async<void> MacAlertsService::catchUp()
{
    return catchUps_.run();
}

Async<void> MacAlertsService::catchUpPass()
{
    co_await deletions_.run();
    co_await uploadWaiting();
    co_await refresh();
    uploadsCaughtUp_();
}

Async<void> MacAlertsService::uploadWaiting()
{
    std::vector<StoredAlert> newestFirst = co_await localStore_.alertsInBackground();
    while (!newestFirst.empty()) {
        StoredAlert oldest = std::move(newestFirst.back());
        newestFirst.pop_back();
        const bool mayGoOn = co_await uploadStored(std::move(oldest));
        if (!mayGoOn) {
            co_return;
        }
    }
}

/// Whether iCloud takes uploads at present.
Async<bool> MacAlertsService::mayUploadNext()
{
    const bool isAvailable = co_await isCloudAvailable();
    co_return isAvailable && !isThrottled();
}

/// One alert's turn. False when those behind it needn't be tried.
Async<bool> MacAlertsService::uploadStored(StoredAlert stored)
{
    const UUID id = stored.alert.id;
    const bool mayUpload = co_await mayUploadNext();
    if (!mayUpload) {
        co_return false;
    }
    auto reading =
        detached(actor_.scheduler(), QualityOfService::utility,
                 [&files = ports_.files, file = localStore_.photoFile(id)] { return readPhoto(files, file); });
    PhotoFile photo = co_await reading;
    const bool isUnreadable = photo.isThere && !photo.content;
    if (isUnreadable || uploader_.isUploading(id) || !localStore_.storedAlert(id)) {
        // Its photo must not be lost; somebody else sees to it; or it has gone meanwhile.
        co_return true;
    }
    const auto outcome = co_await uploader_.upload(std::move(stored.alert), std::move(photo.content));
    if (outcome == AlertUploader::Outcome::uploaded) {
        noteUploaded(id);
    }
    if (outcome == AlertUploader::Outcome::storageFull) {
        iCloudStorageIsFull = true;
    }
    co_return outcome != AlertUploader::Outcome::storageFull&& outcome != AlertUploader::Outcome::unreachable;
}

void MacAlertsService::noteUploaded(const UUID& id)
{
    localStore_.remove(id);
    iCloudStorageIsFull = false;
    std::vector<AlertRow> rows = *alerts.get();
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&id](const AlertRow& other) { return other.alert.id == id; });
    if (row != rows.end()) {
        row->storageLocation = AlertStorageLocation::cloud;
    }
    publish(std::move(rows));
    refreshStorageNotice();
    if (uploader_.discarded().contains(id)) {
        deletions_.start(); // it was deleted while on its way
    }
}

Async<void> MacAlertsService::deletePending()
{
    const std::vector<UUID> ids = deletableIDs();
    if (ids.empty()) {
        co_return;
    }
    const bool isAvailable = co_await isCloudAvailable();
    if (!isAvailable) {
        if (cloud_.isAvailable) {
            errorMessage = cloud_.lastSyncError.get(); // the account doesn't answer
        }
        co_return;
    }
    bool mayGoOn = true;
    for (std::size_t begin = 0; mayGoOn && begin < ids.size() && !isThrottled(); begin += batchSize) {
        const auto first = ids.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto last = ids.begin() + static_cast<std::ptrdiff_t>(std::min(begin + batchSize, ids.size()));
        std::unordered_set<UUID> batch(first, last);
        mayGoOn = co_await deleteBatch(std::move(batch));
    }
}

/// False when the network fails.
Async<bool> MacAlertsService::deleteBatch(std::unordered_set<UUID> ids)
{
    const std::size_t count = ids.size();
    std::unordered_set<UUID> gone;
    try {
        gone = co_await AsyncTimeout::run(actor_, longestDeletion, cloud_.deleteAlerts(std::move(ids)));
    } catch (const AsyncTimeout::TimedOut& error) {
        cloud_.recordSyncFailure(error);
    }
    pendingDeletions_.remove(gone);
    if (gone.size() < count) {
        errorMessage = cloud_.lastSyncError.get();
    }
    co_return gone.size() == count || cloud_.isReachable;
}

/// Oldest first. An alert that is on its way into the cloud can be deleted there once it has arrived.
std::vector<UUID> MacAlertsService::deletableIDs() const
{
    std::vector<UUID> ids = pendingDeletions_.orderedIDs();
    std::erase_if(ids, [this](const UUID& id) { return uploader_.isUploading(id); });
    return ids;
}

} // namespace sentrel
