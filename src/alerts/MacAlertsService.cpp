#include "alerts/MacAlertsService.hpp"

#include "alerts/AlertMerge.hpp"
#include "alerts/AlertSections.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "ports/Language.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"

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
      uploadsCaughtUp_(std::move(uploadsCaughtUp)),
      ports_(ports),
      outbox_(actor, cloud, localStore, uploader, *this, {ports.defaults, ports.files})
{
    observations_.push_back(alerts.observe([this](const AlertList& list) {
        if (!std::exchange(isIndexed_, false)) {
            index_.rebuild(*list);
            cloudChanges_ = nullptr;
        }
    }));
    observations_.push_back(cloud_.isAvailable.observe([this](bool) { refreshStorageNotice(); }));
    observations_.push_back(cloud_.isReachable.observe([this](bool) { refreshStorageNotice(); }));
}

std::vector<AlertSection> MacAlertsService::sections() const
{
    return alertSections(alerts.get(), ports_.wallClock.now(), ports_.calendar, ports_.language);
}

bool MacAlertsService::holds(const UUID& id) const
{
    return index_.contains(id);
}

void MacAlertsService::merge(const StoredAlert& stored)
{
    assertOnMainActor(actor_);
    if (outbox_.isDeleted(stored.alert.id) || holds(stored.alert.id)) {
        return;
    }
    change({{stored.alert.id, AlertRow{stored.alert, locationOf(stored)}}});
    refreshStorageNotice();
}

Async<void> MacAlertsService::refresh()
{
    assertOnMainActor(actor_);
    const Loading loading{anchor_.weak()};
    const std::int64_t generation = ++refreshGeneration_;
    const CloudAnswer answer = co_await askCloud();
    std::vector<StoredAlert> local = co_await outbox_.alertsHereInBackground();
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

Async<MacAlertsService::CloudAnswer> MacAlertsService::askCloud()
{
    CloudAnswer answer;
    const bool isAvailable = co_await cloud_.checkAvailability();
    if (!isAvailable || cloud_.isThrottled()) {
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
    const bool isAnyKnown = index_.size() > index_.here().size();
    const bool comesFromItsBeginning = !isAnyKnown && cloud_.cachedAlerts().empty();
    return comesFromItsBeginning || lastRefreshTimedOut_ ? longestFullRefresh : cloudTimeLimit;
}

void MacAlertsService::apply(const CloudAnswer& answer, std::vector<StoredAlert> local)
{
    const bool isFresh = answer.isFresh && cloud_.isAvailable;
    if (isFresh) {
        outbox_.deleteThoseReturned();
    }
    const bool isUpToDate = cloud_.isAvailable && cloudChanges_ != nullptr && !cloudChanges_->isAnotherUser;
    const bool areCopiesDropped = isUpToDate ? updateList(local, isFresh) : makeList(std::move(local), isFresh);
    errorMessage = answer.error;
    refreshStorageNotice();
    if (areCopiesDropped) {
        uploadsCaughtUp_();
    }
    outbox_.listRefreshed(isFresh);
}

/// Makes the list of all alerts. If it is fresh, first drops the alerts here that the cloud holds too; true when there
/// were any.
bool MacAlertsService::makeList(std::vector<StoredAlert> local, bool isFresh)
{
    std::vector<AlertEvent> remote;
    hidden_.clear();
    changedHere_.clear();
    std::shared_ptr<const AlertMetadataCache::Changes> changesInCloud;
    if (cloud_.isAvailable) {
        remote = cloud_.cachedAlerts();
        changesInCloud = cloud_.watchCachedAlerts();
    }
    std::erase_if(remote, [this](const AlertEvent& alert) { return visibleCloudAlert(alert.id) == nullptr; });
    MergedAlerts merged = mergedAlerts(std::move(remote), std::move(local));
    const bool areCopiesDropped = dropCopies(merged.redundant, isFresh);
    publish(std::move(merged.rows));
    cloudChanges_ = std::move(changesInCloud);
    return areCopiesDropped;
}

/// Brings the list up to date, with the same result as `makeList`: it looks only at the alerts on this Mac, and at
/// those whose row or whose state in the cloud may have changed since the list was made or updated. Each new alert has
/// the list refreshed, and it may hold thousands.
bool MacAlertsService::updateList(const std::vector<StoredAlert>& local, bool isFresh)
{
    std::unordered_map<UUID, const StoredAlert*> stored;
    std::unordered_set<UUID> suspects = std::exchange(changedHere_, {});
    for (const StoredAlert& each : local) {
        stored.emplace(each.alert.id, &each);
        suspects.insert(each.alert.id);
    }
    const auto changesInCloud = std::exchange(cloudChanges_, cloud_.watchCachedAlerts());
    const std::unordered_set<UUID>& hidden = hidden_;
    for (const auto* const ids : {&changesInCloud->ids, &changesInCloud->photos, &hidden, &index_.here()}) {
        suspects.insert(ids->begin(), ids->end());
    }
    std::unordered_set<UUID> redundant;
    std::vector<RowChange> changes;
    for (const UUID& id : suspects) {
        const AlertEvent* const inCloud = visibleCloudAlert(id);
        const auto here = stored.find(id);
        std::optional<AlertRow> row;
        if (inCloud != nullptr) {
            row = {*inCloud, AlertStorageLocation::cloud};
        } else if (here != stored.end()) {
            row = {here->second->alert, locationOf(*here->second)};
        }
        if (inCloud != nullptr && here != stored.end()) {
            redundant.insert(id);
        }
        const auto place = index_.place(*alerts.get(), id);
        const bool isSame = place ? row == (*alerts.get())[*place] : !row;
        if (!isSame) {
            changes.push_back({id, std::move(row)});
        }
    }
    const bool areCopiesDropped = dropCopies(redundant, isFresh);
    change(changes);
    changedHere_.clear();
    return areCopiesDropped;
}

/// Only a fresh answer justifies deleting the copies on this Mac.
bool MacAlertsService::dropCopies(const std::unordered_set<UUID>& ids, bool isFresh)
{
    if (isFresh) {
        outbox_.dropCopies(ids);
    }
    return isFresh && !ids.empty();
}

/// The cloud's alert unless the user has deleted it, which is noted in `hidden_`.
const AlertEvent* MacAlertsService::visibleCloudAlert(const UUID& id)
{
    const AlertEvent* const alert = cloud_.cachedAlert(id);
    if (alert == nullptr || !outbox_.hides(id)) {
        hidden_.erase(id);
        return alert;
    }
    hidden_.insert(id);
    return nullptr;
}

void MacAlertsService::hold(const AlertEvent& alert, std::optional<Bytes> photo)
{
    outbox_.hold(alert, std::move(photo));
    merge({alert, true});
}

void MacAlertsService::deleteAlerts(const std::unordered_set<UUID>& ids)
{
    assertOnMainActor(actor_);
    if (ids.empty()) {
        return;
    }
    outbox_.deleteAlerts(ids);
    std::vector<RowChange> changes;
    for (const UUID& id : ids) {
        if (index_.contains(id)) {
            changes.push_back({id, std::nullopt});
        }
    }
    change(changes);
    refreshStorageNotice();
    uploadsCaughtUp_();
}

void MacAlertsService::attemptEnded(const UUID& id, AlertUploader::Outcome outcome)
{
    iCloudStorageIsFull = outcome == AlertUploader::Outcome::storageFull;
    if (outcome == AlertUploader::Outcome::uploaded) {
        showInCloud(id);
    }
    refreshStorageNotice();
}

void MacAlertsService::showInCloud(const UUID& id)
{
    const auto place = index_.place(*alerts.get(), id);
    if (place && !index_.isInCloud(id)) {
        change({{id, AlertRow{(*alerts.get())[*place].alert, AlertStorageLocation::cloud}}});
    }
}

void MacAlertsService::subtractThoseInCloud(std::unordered_set<UUID>& ids) const
{
    std::erase_if(ids, [this](const UUID& id) { return index_.isInCloud(id); });
}

void MacAlertsService::userDidChange()
{
    iCloudStorageIsFull = false;
    cloudChanges_ = nullptr;
    publish(mergedAlerts({}, outbox_.alertsHere()).rows);
    refreshStorageNotice();
}

void MacAlertsService::publish(std::vector<AlertRow> rows)
{
    if (*alerts.get() != rows) {
        alerts = std::make_shared<std::vector<AlertRow>>(std::move(rows));
    }
}

/// Changes some rows, each at most once, and publishes the list.
void MacAlertsService::change(const std::vector<RowChange>& changes)
{
    if (changes.empty()) {
        return;
    }
    std::vector<AlertRow> rows = takeRows();
    // One after another would move the others each time.
    std::unordered_set<UUID> leaving;
    for (const auto& [id, row] : changes) {
        changedHere_.insert(id);
        const auto place = index_.place(rows, id);
        if (place && row && rows[*place].alert.timestamp == row->alert.timestamp) {
            rows[*place] = *row;
        } else if (place) {
            leaving.insert(id);
        }
    }
    if (!leaving.empty()) {
        std::erase_if(rows, [&leaving](const AlertRow& row) { return leaving.contains(row.alert.id); });
    }
    std::vector<AlertRow> arriving;
    for (const auto& [id, row] : changes) {
        const bool isNew = row && (leaving.contains(id) || !index_.contains(id));
        if (isNew) {
            arriving.push_back(*row);
        }
        if (row) {
            index_.note(*row);
        } else {
            index_.forget(id);
        }
    }
    insertInOrder(rows, std::move(arriving));
    isIndexed_ = true;
    alerts = std::make_shared<std::vector<AlertRow>>(std::move(rows));
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
    if (iCloudStorageIsFull && (!isListEmpty || !outbox_.idsHere().empty())) {
        return "Your iCloud storage is full.\nNew alerts are saved on this Mac.";
    }
    if (isListEmpty) {
        return std::nullopt;
    }
    if (!outbox_.waitingIDs().empty()) {
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

Async<std::optional<Bytes>> MacAlertsService::photo(UUID id)
{
    assertOnMainActor(actor_);
    AlertOutbox::Photo local = co_await outbox_.photoHere(id, QualityOfService::userInitiated);
    if (local.content && !local.content->empty()) {
        co_return std::move(local.content);
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
