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
    observations_.push_back(cloud_.isAvailable.observe([this](bool) { refreshStorageNotice(); }));
    observations_.push_back(cloud_.isReachable.observe([this](bool) { refreshStorageNotice(); }));
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
    if (outbox_.isDeleted(stored.alert.id) || holds(stored.alert.id)) {
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
    const std::vector<AlertRow>& rows = *alerts.get();
    const bool isAnyKnown = std::ranges::any_of(
        rows, [](const AlertRow& row) { return row.storageLocation == AlertStorageLocation::cloud; });
    const bool comesFromItsBeginning = !isAnyKnown && cloud_.cachedAlerts().empty();
    return comesFromItsBeginning || lastRefreshTimedOut_ ? longestFullRefresh : cloudTimeLimit;
}

void MacAlertsService::apply(const CloudAnswer& answer, std::vector<StoredAlert> local)
{
    const bool isFresh = answer.isFresh && cloud_.isAvailable;
    std::vector<AlertEvent> remote = cloud_.isAvailable ? cloud_.cachedAlerts() : std::vector<AlertEvent>{};
    MergedAlerts merged = mergedAlerts(outbox_.withoutDeleted(std::move(remote), isFresh), std::move(local));
    if (isFresh) {
        // Only a fresh answer justifies deleting the copies on this Mac.
        outbox_.dropCopies(merged.redundant);
    }
    publish(std::move(merged.rows));
    errorMessage = answer.error;
    refreshStorageNotice();
    if (isFresh && !merged.redundant.empty()) {
        uploadsCaughtUp_();
    }
    outbox_.listRefreshed(isFresh);
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
    std::vector<AlertRow> kept = *alerts.get();
    std::erase_if(kept, [&ids](const AlertRow& row) { return ids.contains(row.alert.id); });
    publish(std::move(kept));
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
    const auto& shown = *alerts.get();
    const auto row = std::ranges::find_if(shown, [&id](const AlertRow& other) { return other.alert.id == id; });
    if (row == shown.end() || row->storageLocation == AlertStorageLocation::cloud) {
        return;
    }
    const auto place = static_cast<std::size_t>(row - shown.begin());
    std::vector<AlertRow> rows = takeRows();
    rows[place].storageLocation = AlertStorageLocation::cloud;
    publish(std::move(rows));
}

void MacAlertsService::subtractThoseInCloud(std::unordered_set<UUID>& ids) const
{
    for (const AlertRow& row : *alerts.get()) {
        if (row.storageLocation == AlertStorageLocation::cloud) {
            ids.erase(row.alert.id);
        }
    }
}

void MacAlertsService::userDidChange()
{
    iCloudStorageIsFull = false;
    publish(mergedAlerts({}, outbox_.alertsHere()).rows);
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
