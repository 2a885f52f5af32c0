#include "core/coordinator/AlarmCoordinator.hpp"

#include "alerts/AlertUploader.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "alerts/MacAlertsService.hpp"
#include "cloud/CloudKitService.hpp"
#include "core/RandomUUID.hpp"
#include "foundation/Fatal.hpp"
#include "foundation/Quietly.hpp"
#include "outputs/AlarmSoundPlayer.hpp"
#include "outputs/CameraCapture.hpp"
#include "ports/DeviceRegistry.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"

#include <limits>
#include <utility>

// From a trigger to its alert: sound at once, photo and local copy one trigger after another; uploads may overlap.

namespace sentrel {

void AlarmCoordinator::trigger(TriggerReason reason)
{
    assertOnMainActor(actor_);
    if (!isArmed) {
        return;
    }
    const AlarmSettings& settings = with_.settings.settings();
    if (settings.alarmSound) {
        // The sound comes first, because a system call might block the main thread.
        with_.soundPlayer.play(static_cast<float>(settings.alarmVolume));
    }
    ports_.journal.note("trigger", {{"reason", rawValue(reason)}});
    lastTrigger = reason;
    isAlarmActive = isAlarmActive || settings.alarmSound;
    if (pendingReasons_.insert(reason).second) {
        enqueueProcessing(reason);
    }
}

void AlarmCoordinator::stopAlarm()
{
    assertOnMainActor(actor_);
    isAlarmActive = false;
    with_.soundPlayer.stop();
    statusMessage = localized(isArmed ? "Armed" : "Disarmed");
}

void AlarmCoordinator::enqueueProcessing(TriggerReason reason)
{
    if (processingCount_ == std::numeric_limits<std::int64_t>::max()) {
        fatalError("the count of triggers being processed overflows");
    }
    ++processingCount_;
    quietly([this] { alarmPowerAssertion_.acquire("Sentrel is processing an alarm event"); });
    const auto taken = quietly([this] { return std::optional{ports_.wallClock.now()}; });
    processingChain_ = actor_.spawn(processAfter(std::exchange(processingChain_, std::nullopt), reason, taken));
    tasks_.add(*processingChain_);
}

Async<void> AlarmCoordinator::processAfter(std::optional<Task<void>> predecessor, TriggerReason reason,
                                           std::optional<Date> taken)
{
    if (predecessor) {
        // Moved out of this frame's parameters, or the chain would keep every task since its beginning.
        const Task<void> earlier = *std::exchange(predecessor, std::nullopt);
        try {
            co_await earlier;
        } catch (...) {
            // A failed predecessor must not stop this trigger.
        }
    }
    try {
        co_await process(reason, taken);
    } catch (const std::exception& error) {
        ports_.journal.note("alert.failed", {{"reason", rawValue(reason)}, {"why", std::string_view{error.what()}}});
    } catch (...) {
        ports_.journal.note("alert.failed", {{"reason", rawValue(reason)}, {"why", "raised"}});
    }
    finishProcessing();
}

void AlarmCoordinator::finishProcessing()
{
    if (processingCount_ == 0) {
        fatalError("the count of triggers being processed underflows");
    }
    if (--processingCount_ == 0) {
        processingChain_.reset();
        quietly([this] { alarmPowerAssertion_.release(); });
    }
}

Async<void> AlarmCoordinator::process(TriggerReason reason, std::optional<Date> taken)
{
    pendingReasons_.erase(reason);
    const AlarmSettings settings = with_.settings.settings();
    std::optional<Bytes> photo = co_await takePhoto(settings.capturePhoto);
    AlertEvent alert = makeAlertInAnyCase(reason, taken, photo.has_value());
    alert.sendNotification = settings.sendNotification;
    const bool cloudFlag = with_.cloud.isAvailable;
    quietly([&] { keep(alert, photo, cloudFlag); });
    tasks_.add(actor_.spawn(uploadInAnyCase(std::move(alert), std::move(photo), cloudFlag)));
}

Async<std::optional<Bytes>> AlarmCoordinator::takePhoto(bool isWanted)
{
    if (!isWanted || quietly([this] { return lidMonitor_.isLidClosed(); })) {
        co_return std::nullopt;
    }
    std::optional<Bytes> photo = co_await with_.camera.capturePhoto();
    co_return photo;
}

namespace {

/// For an alert that gets no random identifier. One trigger after another is processed, so that the moment and the
/// reason tell alerts of one process apart.
UUID identifierOf(Instant now, TriggerReason reason)
{
    UUID::Octets octets{};
    const auto count = static_cast<std::uint64_t>(now.time_since_epoch().count());
    for (std::size_t i = 0; i < sizeof count; ++i) {
        octets[i] = static_cast<std::uint8_t>(count >> (8 * i));
    }
    octets.back() = static_cast<std::uint8_t>(reason);
    return UUID::fromRandom(octets);
}

} // namespace

/// Retries once: a port that throws may answer the second time, and the alert is worth it.
AlertEvent AlarmCoordinator::makeAlertInAnyCase(TriggerReason reason, std::optional<Date> taken, bool hasPhoto)
{
    try {
        return makeAlert(reason, taken, hasPhoto);
    } catch (...) {
        return makeAlert(reason, taken, hasPhoto);
    }
}

AlertEvent AlarmCoordinator::makeAlert(TriggerReason reason, std::optional<Date> taken, bool hasPhoto)
{
    AlertEvent alert;
    alert.id = insistently([this] { return randomUUID(ports_.random); });
    if (alert.id == UUID{}) {
        alert.id = identifierOf(actor_.scheduler().now(), reason);
    }
    alert.reason = reason;
    alert.timestamp = taken ? *taken : insistently([this] { return ports_.wallClock.now(); });
    alert.deviceName = insistently([this] { return ports_.host.localizedName(); }).value_or("Mac");
    if (hasPhoto) {
        alert.photoFileName = alert.id.text() + ".jpg";
    }
    return alert;
}

/// Saves the alert on disk and shows it in the list. If saving fails, saves it without the photo (the disk may be
/// full), and the list holds alert and photo in memory.
void AlarmCoordinator::keep(const AlertEvent& alert, const std::optional<Bytes>& photo, bool cloudFlag)
{
    if (saveLocally(alert, photo, cloudFlag)) {
        if (!with_.alertList.holds(alert.id)) {
            with_.alertList.merge({alert, cloudFlag});
            with_.alertList.refreshStorageNotice();
        }
        return;
    }
    if (photo) {
        AlertEvent bare = alert;
        bare.photoFileName.reset();
        static_cast<void>(saveLocally(bare, std::nullopt, cloudFlag));
    }
    with_.alertList.hold(alert, photo);
}

bool AlarmCoordinator::saveLocally(const AlertEvent& alert, const std::optional<Bytes>& photo, bool cloudFlag)
{
    try {
        with_.alertStore.save(alert, photo, cloudFlag);
    } catch (const std::exception& error) {
        ports_.journal.note("alert.saveFailed",
                            {{"id", std::string_view{alert.id.text()}}, {"why", std::string_view{error.what()}}});
        return false;
    } catch (...) {
        ports_.journal.note("alert.saveFailed", {{"id", std::string_view{alert.id.text()}}, {"why", "raised"}});
        return false;
    }
    ports_.journal.note(
        "alert.saved",
        {{"id", std::string_view{alert.id.text()}}, {"reason", rawValue(alert.reason)}, {"photo", photo.has_value()}});
    return true;
}

/// An upload that throws leaves its alert waiting for the next catch-up.
Async<void> AlarmCoordinator::uploadInAnyCase(AlertEvent alert, std::optional<Bytes> photo, bool cloudFlag)
{
    const UUID id = alert.id;
    try {
        co_await upload(std::move(alert), std::move(photo), cloudFlag);
        co_return;
    } catch (...) {
        ports_.journal.note("upload.raised", {{"id", std::string_view{id.text()}}});
    }
    quietly([&] { with_.alertStore.setPendingUpload(id); });
}

Async<void> AlarmCoordinator::upload(AlertEvent alert, std::optional<Bytes> photo, bool cloudFlag)
{
    const UUID id = alert.id;
    const bool isAvailable = co_await with_.cloud.checkAvailability();
    if (isAvailable) {
        co_await uploadNow(std::move(alert), std::move(photo));
    } else if (cloudFlag) {
        noteKept(id);
    } else {
        // If iCloud was already known to be unavailable, the alerts window says so instead.
        clearNotices();
    }
    co_await with_.alertList.refresh();
}

Async<void> AlarmCoordinator::uploadNow(AlertEvent alert, std::optional<Bytes> photo)
{
    const UUID id = alert.id;
    const auto outcome = co_await with_.uploader.upload(std::move(alert), std::move(photo));
    with_.alertList.noteAttempt(id, outcome);
    switch (outcome) {
    case AlertUploader::Outcome::uploaded:
        // Clears any other notice too: the alert is safe, and that is the news.
        clearNotices();
        with_.alertList.catchUpIfOwed(); // uploads that failed before may work now
        break;
    case AlertUploader::Outcome::deleted:
        clearLocalSaveNoticeIfResolved();
        break;
    case AlertUploader::Outcome::storageFull:
        break; // the list's storage notice says so
    case AlertUploader::Outcome::unreachable:
    case AlertUploader::Outcome::timedOut:
    case AlertUploader::Outcome::failed:
        noteKept(id);
        break;
    }
}

/// Shows the local-save notice if the alert is stored on this Mac.
void AlarmCoordinator::noteKept(const UUID& id)
{
    if (with_.alertStore.storedAlert(id)) {
        showLocalSaveNotice();
    }
}

void AlarmCoordinator::clearNotices()
{
    showingLocalSaveNotice = false;
    lastError = std::nullopt;
}

void AlarmCoordinator::showLocalSaveNotice()
{
    assertOnMainActor(actor_);
    showingLocalSaveNotice = true;
    lastError = localized("Alert saved on this Mac. It will upload when iCloud is available.");
}

void AlarmCoordinator::clearLocalSaveNoticeIfResolved()
{
    assertOnMainActor(actor_);
    if (showingLocalSaveNotice && with_.alertStore.alertsWaitingForUpload().empty()) {
        clearNotices();
    }
}

} // namespace sentrel
