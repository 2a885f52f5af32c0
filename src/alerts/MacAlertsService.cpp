#include "alerts/MacAlertsService.hpp"

#include "alerts/AlertMerge.hpp"
#include "alerts/AlertSections.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "ports/FileSystem.hpp"
#include "ports/Language.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/Detached.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// A complete list takes many pages, and a part of it is of no use.
constexpr Duration longestFullRefresh = 120s;

/// Longer than `cloudTimeLimit`: a photo is the largest answer of the cloud.
constexpr Duration longestPhotoDownload = 60s;

} // namespace

/// Keeps `isLoading` true while any refresh is under way.
class MacAlertsService::Loading {
public:
    explicit Loading(Weak<MacAlertsService> service) : service_(std::move(service))
    {
        ++service_.get()->refreshesUnderWay_;
        service_.get()->isLoading = true;
    }
    ~Loading()
    {
        if (MacAlertsService* const service = service_.get()) {
            service->isLoading = --service->refreshesUnderWay_ > 0;
        }
    }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;

private:
    Weak<MacAlertsService> service_;
};

MacAlertsService::MacAlertsService(MainActor actor, CloudKitService& cloud, LocalAlertStore& localStore,
                                   AlertUploader& uploader, std::function<void()> uploadsCaughtUp, Ports ports)
    : alerts(std::make_shared<std::vector<AlertRow>>()),
      actor_(actor),
      cloud_(cloud),
      localStore_(localStore),
      uploader_(uploader),
      uploadsCaughtUp_(std::move(uploadsCaughtUp)),
      ports_(ports),
      pendingDeletions_(PendingCloudDeletionStore::standardKey, ports.defaults),
      deletions_(actor, [this] { return deletePending(); }),
      catchUps_(actor, [this] { return catchUpPass(); })
{
    observations_.push_back(cloud_.isAvailable.observe([this](bool) { refreshStorageNotice(); }));
    observations_.push_back(cloud_.isReachable.observe([this](bool) { refreshStorageNotice(); }));
    observations_.push_back(cloud_.lastSyncError.observe([this](const std::optional<std::string>& error) {
        if (!error) {
            catchUpWithWhatIsNew();
        }
    }));
}

std::vector<AlertSection> MacAlertsService::sections() const
{
    return alertSections(alerts.get(), ports_.wallClock.now(), ports_.calendar, ports_.language);
}

bool MacAlertsService::holds(const UUID& id) const
{
    const std::vector<AlertRow>& rows = *alerts.get();
    return std::ranges::any_of(rows, [&id](const AlertRow& row) { return row.alert.id == id; });
}

void MacAlertsService::merge(const StoredAlert& stored)
{
    assertOnMainActor(actor_);
    if (uploader_.discarded().contains(stored.alert.id) || holds(stored.alert.id)) {
        return;
    }
    std::vector<AlertRow> rows = takeRows();
    insertInOrder(rows, {stored.alert, locationOf(stored)});
    publish(std::move(rows));
    refreshStorageNotice();
}

Async<void> MacAlertsService::refresh()
{
    assertOnMainActor(actor_);
    const Loading loading{anchor_.weak()};
    const std::int64_t generation = ++refreshGeneration_;
    const CloudAnswer answer = co_await askCloud();
    std::vector<StoredAlert> local = co_await alertsHere();
    const bool isCancelled = co_await isTaskCancelled();
    if (isCancelled || generation < appliedGeneration_) {
        co_return;
    }
    appliedGeneration_ = generation;
    apply(answer, std::move(local));
    hasLoadedInitialAlerts = true;
}

void MacAlertsService::startRefresh()
{
    assertOnMainActor(actor_);
    if (activeRefreshTask_) {
        activeRefreshTask_->cancel();
    }
    activeRefreshTask_ = actor_.spawn(refresh());
    tasks_.add(*activeRefreshTask_);
}

bool MacAlertsService::isThrottled()
{
    return cloud_.requestBackoff().remainingDelay(ports_.wallClock.now()) > 0.0;
}

Async<MacAlertsService::CloudAnswer> MacAlertsService::askCloud()
{
    CloudAnswer answer;
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable || isThrottled()) {
        // A missing account is shown by the storage notice, not as an error.
        answer.error = cloud_.isAvailable ? cloud_.lastSyncError.get() : std::nullopt;
        co_return answer;
    }
    try {
        co_await AsyncTimeout::run(actor_, longestRefresh(), cloud_.refreshAlerts());
        answer.isFresh = true;
        lastRefreshTimedOut_ = false;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        lastRefreshTimedOut_ = dynamic_cast<const AsyncTimeout::TimedOut*>(&error) != nullptr;
        cloud_.recordSyncFailure(error);
        answer.error = cloud_.userFacingMessage(error);
    }
    co_return answer;
}

Duration MacAlertsService::longestRefresh() const
{
    const std::vector<AlertRow>& rows = *alerts.get();
    const bool isAnyKnown = std::ranges::any_of(
        rows, [](const AlertRow& row) { return row.storageLocation == AlertStorageLocation::cloud; });
    const bool comesFromItsBeginning = !isAnyKnown && cloud_.cachedAlerts().empty();
    return comesFromItsBeginning || lastRefreshTimedOut_ ? longestFullRefresh : cloudTimeLimit;
}

void MacAlertsService::apply(const CloudAnswer& answer, std::vector<StoredAlert> local)
{
    const bool isFresh = answer.isFresh && cloud_.isAvailable;
    MergedAlerts merged = mergedAlerts(cloudAlerts(isFresh), std::move(local));
    if (isFresh) {
        // Only a fresh answer justifies deleting the copies on this Mac.
        localStore_.remove(merged.redundant);
        std::erase_if(held_, [&](const auto& entry) { return merged.redundant.contains(entry.first); });
    }
    publish(std::move(merged.rows));
    errorMessage = answer.error;
    refreshStorageNotice();
    if (isFresh && !merged.redundant.empty()) {
        uploadsCaughtUp_();
    }
    if (isFresh && !pendingDeletions_.ids().empty() && !catchUps_.isRunning()) {
        deletions_.start();
    }
    ensureRetry();
}

/// The cloud's alerts to show: none that the user has deleted.
std::vector<AlertEvent> MacAlertsService::cloudAlerts(bool isFresh)
{
    if (!cloud_.isAvailable) {
        return {};
    }
    std::vector<AlertEvent> shown = cloud_.cachedAlerts();
    std::unordered_set<UUID> returned;
    std::erase_if(shown, [&](const AlertEvent& alert) {
        const bool isDeleted = uploader_.discarded().contains(alert.id);
        if (isDeleted && isFresh) {
            returned.insert(alert.id);
        }
        return isDeleted || pendingDeletions_.ids().contains(alert.id);
    });
    // An upload that was given up may have reached the server after the deletion.
    pendingDeletions_.add(returned, cloud_.cacheOwner());
    return shown;
}

void MacAlertsService::userDidChange()
{
    iCloudStorageIsFull = false;
    publish(mergedAlerts({}, withHeld(localStore_.alerts())).rows);
    refreshStorageNotice();
}

void MacAlertsService::publish(std::vector<AlertRow> rows)
{
    if (*alerts.get() != rows) {
        alerts = std::make_shared<std::vector<AlertRow>>(std::move(rows));
    }
}

/// The rows, for a change that is then published: moved out of a list that no view holds, else copied. Every alert
/// would otherwise copy thousands of others.
std::vector<AlertRow> MacAlertsService::takeRows()
{
    const AlertList& list = alerts.get();
    if (list.use_count() > 1) {
        return *list;
    }
    return std::move(*std::const_pointer_cast<std::vector<AlertRow>>(list));
}

void MacAlertsService::refreshStorageNotice()
{
    assertOnMainActor(actor_);
    const auto notice = storageNotice();
    infoMessage = notice ? std::optional{ports_.language.localized(*notice)} : std::nullopt;
}

std::optional<std::string> MacAlertsService::storageNotice()
{
    const bool isListEmpty = alerts.get()->empty();
    if (iCloudStorageIsFull && (!isListEmpty || !localStore_.identifiers().empty())) {
        return "Your iCloud storage is full.\nNew alerts are saved on this Mac.";
    }
    if (isListEmpty) {
        return std::nullopt;
    }
    if (!waitingIDs().empty()) {
        return "Some alerts are waiting to upload to iCloud.";
    }
    if (!cloud_.isAvailable) {
        return "Alerts are saved on this Mac only.";
    }
    if (!cloud_.isReachable) {
        return "Showing alerts saved on this Mac until iCloud is reachable.";
    }
    return std::nullopt;
}

/// The alerts on this Mac that the cloud is not known to hold.
std::unordered_set<UUID> MacAlertsService::waitingIDs()
{
    std::unordered_set<UUID> waiting = localStore_.identifiers();
    for (const auto& [id, alert] : held_) {
        waiting.insert(id);
    }
    if (waiting.empty()) {
        return waiting;
    }
    for (const AlertRow& row : *alerts.get()) {
        if (row.storageLocation == AlertStorageLocation::cloud) {
            waiting.erase(row.alert.id);
        }
    }
    return waiting;
}

Async<std::optional<Bytes>> MacAlertsService::photo(UUID id)
{
    assertOnMainActor(actor_);
    const auto held = held_.find(id);
    if (held != held_.end() && held->second.photo) {
        co_return held->second.photo;
    }
    auto reading = detached(actor_.scheduler(), QualityOfService::userInitiated,
                            [&files = ports_.files, file = localStore_.photoFile(id)] { return files.read(file); });
    std::optional<Bytes> local = co_await reading;
    if (local && !local->empty()) {
        co_return local;
    }
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable) {
        co_return std::nullopt;
    }
    try {
        std::optional<Bytes> remote = co_await AsyncTimeout::run(actor_, longestPhotoDownload, cloud_.alertPhoto(id));
        co_return remote;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        if (!isCloudKitError(error, CloudErrorCode::unknownItem)) {
            cloud_.recordSyncFailure(error);
        }
    }
    co_return std::nullopt;
}

} // namespace sentrel
