#include "alerts/MacAlertsService.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "cloud/PresenceTimes.hpp"
#include "ports/FileSystem.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Sleep.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <utility>

// Pending work for iCloud: unconfirmed deletions, and alerts that it does not hold yet.

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// Deletions per deadline: each batch's results are stored before the next one begins.
constexpr std::size_t batchSize = 200;

/// Bounds of the wait between retries.
constexpr Duration shortestRetryDelay = 30s;
constexpr Duration longestRetryDelay = 300s;

/// Alerts held in memory with their photos while the disk is full: the newest.
constexpr std::size_t mostHeld = 100;

/// Timeouts in a row that end the uploads: one may be due to a large photo.
constexpr int mostMissedDeadlines = 2;

/// The state of a photo's file at its upload.
struct PhotoFile {
    bool isThere = false;
    std::optional<Bytes> content;
};

PhotoFile readPhoto(ports::FileSystem& files, const std::filesystem::path& file)
{
    return {files.exists(file), files.read(file)};
}

} // namespace

void MacAlertsService::deleteAlerts(const std::unordered_set<UUID>& ids)
{
    assertOnMainActor(actor_);
    if (ids.empty()) {
        return;
    }
    localStore_.remove(ids);
    std::erase_if(held_, [&ids](const auto& entry) { return ids.contains(entry.first); });
    std::erase_if(slow_, [&ids](const UUID& id) { return ids.contains(id); });
    std::erase_if(refused_, [&ids](const UUID& id) { return ids.contains(id); });
    pendingDeletions_.add(ids, cloud_.cacheOwner());
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
    refused_.clear();
    return catchUps_.run();
}

/// The alerts on the disk and those held in memory.
Async<std::vector<StoredAlert>> MacAlertsService::alertsHere()
{
    std::vector<StoredAlert> stored = co_await localStore_.alertsInBackground();
    co_return withHeld(std::move(stored));
}

std::vector<StoredAlert> MacAlertsService::withHeld(std::vector<StoredAlert> stored) const
{
    std::erase_if(stored, [this](const StoredAlert& each) { return held_.contains(each.alert.id); });
    for (const auto& [id, held] : held_) {
        stored.insert(stored.begin(), {held.alert, true});
    }
    return stored;
}

void MacAlertsService::hold(const AlertEvent& alert, std::optional<Bytes> photo)
{
    assertOnMainActor(actor_);
    if (held_.size() == mostHeld) {
        const auto isOlder = [](const auto& left, const auto& right) {
            return left.second.alert.timestamp < right.second.alert.timestamp;
        };
        held_.erase(std::ranges::min_element(held_, isOlder));
    }
    held_.insert_or_assign(alert.id, HeldAlert{alert, std::move(photo)});
    merge({alert, true});
}

/// Saves held alerts if the disk has room.
void MacAlertsService::saveHeld()
{
    std::erase_if(held_, [this](const auto& entry) {
        try {
            localStore_.save(entry.second.alert, entry.second.photo, true);
        } catch (const std::exception&) {
            return false;
        }
        return true;
    });
}

Async<void> MacAlertsService::catchUpPass()
{
    cancelRetry(); // this pass replaces it
    saveHeld();
    if (cloud_.isOwnerCheckOwed()) {
        const bool hasChanged = co_await cloud_.checkCacheOwner();
        if (hasChanged) {
            userDidChange();
        }
    }
    co_await deletions_.run();
    co_await uploadWaiting();
    co_await refresh();
    uploadsCaughtUp_();
    planRetry();
}

void MacAlertsService::catchUpIfOwed()
{
    assertOnMainActor(actor_);
    refused_.clear();
    catchUpWithWhatIsNew();
}

/// Call when iCloud answers again. An alert that the server has just refused still waits for its retry: the success of
/// another request says nothing about it. No effect during a pass.
void MacAlertsService::catchUpWithWhatIsNew()
{
    if (hasLoadedInitialAlerts && !catchUps_.isRunning() && isAnythingOwed(false)) {
        catchUps_.start();
    }
}

/// Whether deletions wait, or uploads not under way.
bool MacAlertsService::isAnythingOwed(bool countsRefused)
{
    const std::unordered_set<UUID> waiting = waitingIDs();
    return !pendingDeletions_.idsOf(cloud_.cacheOwner()).empty() ||
           std::ranges::any_of(waiting, [this, countsRefused](const UUID& id) {
               return !uploader_.isUploading(id) && (countsRefused || !refused_.contains(id));
           });
}

void MacAlertsService::cancelRetry()
{
    if (retry_) {
        retry_.cancel();
        retry_ = {};
    }
}

/// Schedules a retry of the remaining work, which then needs no event to start a pass.
void MacAlertsService::planRetry()
{
    cancelRetry();
    if (!isAnythingOwed()) {
        retryDelay_ = {};
        return;
    }
    const Duration patience = remainingBackoff(cloud_.requestBackoff(), ports_.wallClock.now());
    retry_ = actor_.spawn(retryAfter(std::max({shortestRetryDelay, retryDelay_, patience})));
    tasks_.add(retry_);
}

/// The same for work left over outside of a pass.
void MacAlertsService::ensureRetry()
{
    if (!retry_ && !catchUps_.isRunning() && isAnythingOwed()) {
        planRetry();
    }
}

Async<void> MacAlertsService::retryAfter(Duration delay)
{
    co_await sleepFor(delay);
    const bool isCancelled = co_await isTaskCancelled(); // cancelled in the turn in which the sleep ended
    if (isCancelled) {
        co_return;
    }
    retry_ = {};
    refused_.clear();
    if (isAnythingOwed()) {
        retryDelay_ = std::min(std::max(shortestRetryDelay, retryDelay_) * 2, longestRetryDelay);
        catchUps_.start();
    }
}

Async<void> MacAlertsService::uploadWaiting()
{
    const std::vector<StoredAlert> newestFirst = co_await alertsHere();
    // Alerts whose upload timed out come last, or two of them would block all others for ever.
    std::vector<StoredAlert> waiting; // the next is at the end
    std::vector<StoredAlert> others;
    std::ranges::partition_copy(newestFirst, std::back_inserter(waiting), std::back_inserter(others),
                                [this](const StoredAlert& stored) { return slow_.contains(stored.alert.id); });
    std::ranges::move(others, std::back_inserter(waiting));
    int missedDeadlines = 0; // in a row
    while (!waiting.empty()) {
        StoredAlert next = std::move(waiting.back());
        waiting.pop_back();
        const UUID id = next.alert.id;
        if (refused_.contains(id)) {
            continue;
        }
        const auto outcome = co_await uploadStored(std::move(next));
        if (outcome == AlertUploader::Outcome::timedOut) {
            slow_.insert(id);
            ++missedDeadlines;
        } else {
            missedDeadlines = 0;
        }
        if (outcome == AlertUploader::Outcome::storageFull || outcome == AlertUploader::Outcome::unreachable ||
            missedDeadlines == mostMissedDeadlines) {
            co_return;
        }
    }
}

/// Whether iCloud takes uploads at present.
Async<bool> MacAlertsService::mayUploadNext()
{
    const bool isAvailable = co_await cloud_.checkAvailability();
    co_return isAvailable && !isThrottled();
}

/// Uploads one alert if it can.
Async<AlertUploader::Outcome> MacAlertsService::uploadStored(StoredAlert stored)
{
    const UUID id = stored.alert.id;
    const bool mayUpload = co_await mayUploadNext();
    if (!mayUpload) {
        co_return AlertUploader::Outcome::unreachable;
    }
    auto reading =
        detached(actor_.scheduler(), QualityOfService::utility,
                 [&files = ports_.files, file = localStore_.photoFile(id)] { return readPhoto(files, file); });
    PhotoFile photo = co_await reading;
    const auto held = held_.find(id);
    if (held != held_.end()) {
        photo = {held->second.photo.has_value(), held->second.photo};
    }
    const bool isUnreadable = photo.isThere && !photo.content;
    const bool isHere = held != held_.end() || localStore_.storedAlert(id);
    if (isUnreadable || uploader_.isUploading(id) || !isHere) {
        // Its photo must not be lost, another attempt is under way, or the alert has gone.
        co_return AlertUploader::Outcome::failed;
    }
    const auto outcome = co_await uploader_.upload(std::move(stored.alert), std::move(photo.content));
    noteAttempt(id, outcome);
    co_return outcome;
}

void MacAlertsService::noteAttempt(const UUID& id, AlertUploader::Outcome outcome)
{
    using Outcome = AlertUploader::Outcome;
    if (outcome == Outcome::deleted) {
        return; // nothing was tried
    }
    iCloudStorageIsFull = outcome == Outcome::storageFull;
    if (outcome == Outcome::uploaded) {
        noteUploaded(id);
        return;
    }
    localStore_.setPendingUpload(id);
    if (outcome == Outcome::failed || outcome == Outcome::storageFull) {
        refused_.insert(id);
    }
    refreshStorageNotice();
}

void MacAlertsService::noteUploaded(const UUID& id)
{
    assertOnMainActor(actor_);
    localStore_.remove(id);
    held_.erase(id);
    slow_.erase(id);
    refused_.erase(id);
    retryDelay_ = {}; // uploads work again
    const auto shown = std::ranges::find_if(*alerts.get(), [&id](const AlertRow& row) { return row.alert.id == id; });
    const auto place = static_cast<std::size_t>(shown - alerts.get()->begin());
    if (shown != alerts.get()->end() && shown->storageLocation != AlertStorageLocation::cloud) {
        std::vector<AlertRow> rows = takeRows();
        rows[place].storageLocation = AlertStorageLocation::cloud;
        publish(std::move(rows));
    }
    refreshStorageNotice();
    if (uploader_.discarded().contains(id)) {
        deletions_.start(); // the alert was deleted during its upload
    }
}

Async<void> MacAlertsService::deletePending()
{
    if (deletableIDs().empty()) {
        co_return;
    }
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable) {
        if (cloud_.isAvailable) {
            errorMessage = cloud_.lastSyncError.get(); // the account doesn't answer
        }
        ensureRetry();
        co_return;
    }
    bool mayGoOn = true;
    const std::vector<UUID> ids = deletableIDs();
    for (std::size_t begin = 0; mayGoOn && begin < ids.size() && !isThrottled(); begin += batchSize) {
        const auto first = ids.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto last = ids.begin() + static_cast<std::ptrdiff_t>(std::min(begin + batchSize, ids.size()));
        std::unordered_set<UUID> batch(first, last);
        mayGoOn = co_await deleteBatch(std::move(batch));
    }
    ensureRetry();
}

/// False when the network fails, or the user has changed.
Async<bool> MacAlertsService::deleteBatch(std::unordered_set<UUID> ids)
{
    const std::size_t count = ids.size();
    const std::string owner = cloud_.cacheOwner();
    std::unordered_set<UUID> gone;
    try {
        gone = co_await AsyncTimeout::run(actor_, cloudTimeLimit, cloud_.deleteAlerts(std::move(ids)));
    } catch (const AsyncTimeout::TimedOut& error) {
        cloud_.recordSyncFailure(error);
    }
    if (cloud_.isOwnerCheckOwed() || cloud_.cacheOwner() != owner) {
        co_return false; // the answer may come from another user's database, which never held them
    }
    const bool isDone = gone.size() == count;
    // Alerts that may still arrive are deleted again by a later pass; no list would show them.
    std::erase_if(gone, [this](const UUID& id) { return uploader_.mayArriveLate(id); });
    pendingDeletions_.remove(gone);
    if (!isDone) {
        errorMessage = cloud_.lastSyncError.get();
    }
    co_return isDone || cloud_.isReachable;
}

/// Oldest first. Excludes alerts being uploaded: the cloud can delete them only after they arrive.
std::vector<UUID> MacAlertsService::deletableIDs() const
{
    std::vector<UUID> ids = pendingDeletions_.idsOf(cloud_.cacheOwner());
    std::erase_if(ids, [this](const UUID& id) { return uploader_.isUploading(id); });
    return ids;
}

} // namespace sentrel
