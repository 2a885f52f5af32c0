#include "alerts/MacAlertsService.hpp"

#include "alerts/AlertSections.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "core/LocalizedText.hpp"
#include "foundation/Quietly.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/CurrentTask.hpp"

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
      outbox_(actor, cloud, localStore, uploader, *this, {ports.defaults, ports.files}),
      rows_(alerts, cloud, outbox_)
{
    observations_.push_back(cloud_.isAvailable.observe([this](bool) { refreshStorageNotice(); }));
    observations_.push_back(cloud_.isReachable.observe([this](bool) { refreshStorageNotice(); }));
}

std::vector<AlertSection> MacAlertsService::sections() const
{
    return alertSections(alerts.get(), ports_.wallClock.now(), ports_.calendar, ports_.language);
}

void MacAlertsService::merge(const StoredAlert& stored)
{
    assertOnMainActor(actor_);
    if (outbox_.isDeleted(stored.alert.id) || rows_.contains(stored.alert.id)) {
        return;
    }
    rows_.add({stored.alert, locationOf(stored)});
    refreshStorageNotice();
}

Async<void> MacAlertsService::refresh()
{
    assertOnMainActor(actor_);
    const Loading loading{anchor_.weak()};
    try {
        co_await refreshOnce();
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        // A call raised: a later refresh tries it again.
        isRefreshOwed_ = true;
        insistently([this] { outbox_.listRefreshed(false); });
    }
}

Async<void> MacAlertsService::refreshOnce()
{
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
    const bool comesFromItsBeginning = !rows_.isAnyInCloud() && cloud_.cachedAlerts().empty();
    return comesFromItsBeginning || lastRefreshTimedOut_ ? longestFullRefresh : cloudTimeLimit;
}

void MacAlertsService::apply(const CloudAnswer& answer, std::vector<StoredAlert> local)
{
    const bool isFresh = answer.isFresh && cloud_.isAvailable;
    if (isFresh) {
        outbox_.deleteThoseReturned();
    }
    const std::unordered_set<UUID> redundant = rows_.refresh(std::move(local));
    // Only a fresh answer justifies deleting the copies on this Mac.
    const bool areCopiesDropped = isFresh && !redundant.empty();
    if (areCopiesDropped) {
        outbox_.dropCopies(redundant);
    }
    isRefreshOwed_ = !isFresh && cloud_.mayHaveAccount();
    errorMessage = answer.error;
    refreshStorageNotice();
    if (areCopiesDropped) {
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
    rows_.remove(ids);
    refreshStorageNotice();
    uploadsCaughtUp_();
}

void MacAlertsService::attemptEnded(const UUID& id, AlertUploader::Outcome outcome)
{
    iCloudStorageIsFull = outcome == AlertUploader::Outcome::storageFull;
    if (outcome == AlertUploader::Outcome::uploaded) {
        rows_.moveToCloud(id);
    }
    refreshStorageNotice();
}

void MacAlertsService::subtractThoseInCloud(std::unordered_set<UUID>& ids) const
{
    std::erase_if(ids, [this](const UUID& id) { return rows_.isInCloud(id); });
}

void MacAlertsService::userDidChange()
{
    iCloudStorageIsFull = false;
    isRefreshOwed_ = true;
    rows_.startOver(outbox_.alertsHere());
    refreshStorageNotice();
}

void MacAlertsService::refreshStorageNotice()
{
    assertOnMainActor(actor_);
    const auto notice = storageNotice();
    infoMessage = notice ? std::optional{localizedInAnyCase(ports_.language, *notice)} : std::nullopt;
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
