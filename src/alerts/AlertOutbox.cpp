#include "alerts/AlertOutbox.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "foundation/Quietly.hpp"
#include "ports/FileSystem.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Sleep.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <iterator>
#include <utility>

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// Bounds of the wait between retries.
constexpr Duration shortestRetryDelay = 30s;
constexpr Duration longestRetryDelay = 300s;

/// Alerts held in memory with their photos while the disk is full: the newest.
constexpr std::size_t mostHeld = 100;

/// Timeouts in a row that end the uploads: one may be due to a large photo.
constexpr int mostMissedDeadlines = 2;

} // namespace

AlertOutbox::AlertOutbox(MainActor actor, CloudKitService& cloud, LocalAlertStore& localStore, AlertUploader& uploader,
                         OutboxList& list, Ports ports)
    : actor_(actor),
      cloud_(cloud),
      localStore_(localStore),
      uploader_(uploader),
      list_(list),
      files_(ports.files),
      pendingDeletions_(PendingCloudDeletionStore::standardKey, ports.defaults),
      deletions_(actor, [this] { return deletePending(); }),
      passes_(actor, [this] { return pass(); })
{
    syncErrors_ = cloud_.lastSyncError.observe([this](const std::optional<std::string>& error) {
        if (!error) {
            catchUpWithWhatIsNew();
        }
    });
}

void AlertOutbox::hold(const AlertEvent& alert, std::optional<Bytes> photo)
{
    assertOnMainActor(actor_);
    if (held_.size() == mostHeld) {
        const auto isOlder = [](const auto& left, const auto& right) {
            return left.second.alert.timestamp < right.second.alert.timestamp;
        };
        held_.erase(std::ranges::min_element(held_, isOlder));
    }
    held_.insert_or_assign(alert.id, HeldAlert{alert, std::move(photo)});
}

void AlertOutbox::noteAttempt(const UUID& id, AlertUploader::Outcome outcome)
{
    using Outcome = AlertUploader::Outcome;
    assertOnMainActor(actor_);
    if (outcome == Outcome::deleted) {
        return; // nothing was tried
    }
    if (outcome == Outcome::uploaded) {
        localStore_.remove(id);
        held_.erase(id);
        slow_.erase(id);
        refused_.erase(id);
        retryDelay_ = {}; // uploads work again
        if (isDeleted(id)) {
            deletions_.start(); // the alert was deleted during its upload
        }
    } else {
        localStore_.setPendingUpload(id);
        if (outcome == Outcome::failed || outcome == Outcome::storageFull) {
            refused_.insert(id);
        }
    }
    list_.attemptEnded(id, outcome);
}

void AlertOutbox::deleteAlerts(const std::unordered_set<UUID>& ids)
{
    assertOnMainActor(actor_);
    const auto isDeletedNow = [&ids](const UUID& id) { return ids.contains(id); };
    dropCopies(ids);
    std::erase_if(slow_, isDeletedNow);
    std::erase_if(refused_, isDeletedNow);
    pendingDeletions_.add(ids, cloud_.cacheOwner());
    uploader_.discard(ids);
    deletions_.start();
}

void AlertOutbox::dropCopies(const std::unordered_set<UUID>& ids)
{
    localStore_.remove(ids);
    std::erase_if(held_, [&ids](const auto& entry) { return ids.contains(entry.first); });
}

void AlertOutbox::listRefreshed(bool isFresh)
{
    if (isFresh && !pendingDeletions_.ids().empty() && !passes_.isRunning()) {
        deletions_.start();
    }
    ensureRetry();
}

void AlertOutbox::deleteThoseReturned()
{
    std::unordered_set<UUID> returned;
    for (const UUID& id : uploader_.discarded()) {
        if (cloud_.cachedAlert(id) != nullptr) {
            returned.insert(id);
        }
    }
    pendingDeletions_.add(returned, cloud_.cacheOwner());
}

Async<void> AlertOutbox::catchUp()
{
    refused_.clear();
    return passes_.run();
}

void AlertOutbox::catchUpIfOwed()
{
    assertOnMainActor(actor_);
    refused_.clear();
    catchUpWithWhatIsNew();
}

/// Call when iCloud answers again. An alert that the server has just refused still waits for its retry: the success of
/// another request says nothing about it. No effect during a pass.
void AlertOutbox::catchUpWithWhatIsNew()
{
    if (list_.isLoaded() && !passes_.isRunning() && isAnythingOwed(false)) {
        passes_.start();
    }
}

std::vector<StoredAlert> AlertOutbox::alertsHere()
{
    return withHeld(localStore_.alerts());
}

Async<std::vector<StoredAlert>> AlertOutbox::alertsHereInBackground()
{
    std::vector<StoredAlert> stored = co_await localStore_.alertsInBackground();
    co_return withHeld(std::move(stored));
}

std::vector<StoredAlert> AlertOutbox::withHeld(std::vector<StoredAlert> stored) const
{
    std::erase_if(stored, [this](const StoredAlert& each) { return held_.contains(each.alert.id); });
    for (const auto& [id, held] : held_) {
        stored.insert(stored.begin(), {held.alert, true});
    }
    return stored;
}

std::unordered_set<UUID> AlertOutbox::idsHere() const
{
    std::unordered_set<UUID> ids = localStore_.identifiers();
    for (const auto& [id, alert] : held_) {
        ids.insert(id);
    }
    return ids;
}

std::unordered_set<UUID> AlertOutbox::waitingIDs() const
{
    std::unordered_set<UUID> waiting = idsHere();
    if (!waiting.empty()) {
        list_.subtractThoseInCloud(waiting);
    }
    return waiting;
}

Async<AlertOutbox::Photo> AlertOutbox::photoHere(UUID id, QualityOfService priority)
{
    const auto held = held_.find(id);
    if (held != held_.end() && held->second.photo) {
        Photo photo{true, held->second.photo};
        co_return photo;
    }
    auto reading = detached(actor_.scheduler(), priority, [&files = files_, file = localStore_.photoFile(id)] {
        return Photo{files.exists(file), files.read(file)};
    });
    Photo photo = co_await reading;
    co_return photo;
}

/// Whether deletions wait, or uploads not under way, or files that could not be read or removed, or the question who is
/// signed in: until its answer the rows of an earlier user may still be shown. With `countsRefused`, also what was
/// tried and refused: uploads, and a refresh of the list.
bool AlertOutbox::isAnythingOwed(bool countsRefused) const
{
    try {
        const std::unordered_set<UUID> waiting = waitingIDs();
        return (countsRefused && list_.isRefreshOwed()) || cloud_.isOwnerCheckOwed() || !localStore_.isSettled() ||
               !pendingDeletions_.idsOf(cloud_.cacheOwner()).empty() ||
               std::ranges::any_of(waiting, [this, countsRefused](const UUID& id) {
                   return !uploader_.isUploading(id) && (countsRefused || !refused_.contains(id));
               });
    } catch (...) {
        return true; // the folder can't be read just now
    }
}

void AlertOutbox::cancelRetry()
{
    if (retry_) {
        retry_.cancel();
        retry_ = {};
    }
}

/// Schedules a retry of the remaining work, which then needs no event to start a pass.
void AlertOutbox::planRetry()
{
    cancelRetry();
    if (!isAnythingOwed()) {
        retryDelay_ = {};
        return;
    }
    const Duration backoff = quietly([this] { return cloud_.remainingBackoff(); });
    retry_ = actor_.spawn(retryAfter(std::max({shortestRetryDelay, retryDelay_, backoff})));
    tasks_.add(retry_);
}

/// The same for work left over outside of a pass.
void AlertOutbox::ensureRetry()
{
    if (!retry_ && !passes_.isRunning() && isAnythingOwed()) {
        planRetry();
    }
}

Async<void> AlertOutbox::retryAfter(Duration delay)
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
        passes_.start();
    }
}

Async<void> AlertOutbox::pass()
{
    cancelRetry(); // this pass replaces it
    std::exception_ptr failure;
    try {
        co_await passWithoutRetry();
    } catch (...) {
        failure = std::current_exception();
    }
    // Also after a failure, or work that is left over would wait for an event that may never come.
    insistently([this] { planRetry(); });
    if (failure) {
        std::rethrow_exception(failure);
    }
}

Async<void> AlertOutbox::passWithoutRetry()
{
    saveHeld();
    if (cloud_.isOwnerCheckOwed()) {
        const bool hasChanged = co_await cloud_.checkCacheOwner();
        if (hasChanged) {
            list_.userDidChange();
        }
    }
    co_await deletions_.run();
    co_await uploadWaiting();
    co_await list_.refresh();
    list_.passEnded();
}

/// Saves held alerts if the disk has room.
void AlertOutbox::saveHeld()
{
    std::erase_if(held_, [this](const auto& entry) {
        try {
            localStore_.save(entry.second.alert, entry.second.photo, true);
        } catch (...) {
            return false;
        }
        return true;
    });
}

Async<void> AlertOutbox::uploadWaiting()
{
    const std::vector<StoredAlert> newestFirst = co_await alertsHereInBackground();
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

/// Uploads one alert if it can.
Async<AlertUploader::Outcome> AlertOutbox::uploadStored(StoredAlert stored)
{
    const UUID id = stored.alert.id;
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable || cloud_.isThrottled()) {
        co_return AlertUploader::Outcome::unreachable;
    }
    Photo photo = co_await photoHere(id, QualityOfService::utility);
    const bool isUnreadable = photo.isThere && !photo.content;
    const bool isHere = held_.contains(id) || localStore_.storedAlert(id);
    if (isUnreadable || uploader_.isUploading(id) || !isHere) {
        // Its photo must not be lost, another attempt is under way, or the alert has gone.
        co_return AlertUploader::Outcome::failed;
    }
    const auto outcome = co_await uploader_.upload(std::move(stored.alert), std::move(photo.content));
    noteAttempt(id, outcome);
    co_return outcome;
}

Async<void> AlertOutbox::deletePending()
{
    if (deletableIDs().empty()) {
        co_return;
    }
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable) {
        if (cloud_.isAvailable) {
            list_.deletionsFailed(); // the account doesn't answer
        }
        ensureRetry();
        co_return;
    }
    std::vector<UUID> ids = deletableIDs();
    bool mayGoOn = true;
    while (mayGoOn && !ids.empty() && !cloud_.isThrottled()) {
        const auto end =
            ids.begin() + static_cast<std::ptrdiff_t>(std::min(ids.size(), CloudKitService::mostDeletions));
        std::unordered_set<UUID> batch(ids.begin(), end);
        ids.erase(ids.begin(), end);
        mayGoOn = co_await deleteBatch(std::move(batch));
    }
    ensureRetry();
}

/// Stores the results before the next batch begins. False when the network fails, or the user has changed.
Async<bool> AlertOutbox::deleteBatch(std::unordered_set<UUID> ids)
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
        list_.deletionsFailed();
    }
    co_return isDone || cloud_.isReachable;
}

/// Oldest first. Excludes alerts being uploaded: the cloud can delete them only after they arrive.
std::vector<UUID> AlertOutbox::deletableIDs() const
{
    std::vector<UUID> ids = pendingDeletions_.idsOf(cloud_.cacheOwner());
    std::erase_if(ids, [this](const UUID& id) { return uploader_.isUploading(id); });
    return ids;
}

} // namespace sentrel
