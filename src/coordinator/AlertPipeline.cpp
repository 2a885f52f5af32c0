#include "coordinator/AlertPipeline.hpp"

#include "alerts/AlertUploader.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "alerts/MacAlertsService.hpp"
#include "cloud/CloudKitService.hpp"
#include "core/Events.hpp"
#include "core/RandomUUID.hpp"
#include "core/SettingsStore.hpp"
#include "foundation/Fatal.hpp"
#include "foundation/Quietly.hpp"
#include "outputs/CameraCapture.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"
#include "ports/WallClock.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "sensors/LidMonitor.hpp"

#include <limits>
#include <utility>

namespace sentrel {

namespace {

/// An Objective-C exception has no text here.
std::string textOfCurrentException()
{
    try {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "raised";
    }
}

} // namespace

AlertPipeline::AlertPipeline(MainActor actor, Collaborators collaborators, Ports ports)
    : actor_(actor), with_(collaborators), ports_(ports), assertion_(ports.powerAssertions)
{
}

void AlertPipeline::add(TriggerReason reason)
{
    assertOnMainActor(actor_);
    if (!pendingReasons_.insert(reason).second) {
        return;
    }
    if (processingCount_ == std::numeric_limits<std::int64_t>::max()) {
        fatalError("the count of triggers being processed overflows");
    }
    ++processingCount_;
    quietly([this] { assertion_.acquire("Sentrel is processing an alarm event"); });
    const auto date = quietly([this] { return std::optional{ports_.wallClock.now()}; });
    processingChain_ = actor_.spawn(processAfter(std::exchange(processingChain_, std::nullopt), reason, date));
    tasks_.add(*processingChain_);
}

Async<void> AlertPipeline::processAfter(std::optional<Task<void>> predecessor, TriggerReason reason,
                                        std::optional<Date> date)
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
        co_await process(reason, date);
    } catch (...) {
        ports_.journal.note(events::AlertFailed{rawValue(reason), textOfCurrentException()});
    }
    finishProcessing();
}

void AlertPipeline::finishProcessing()
{
    if (processingCount_ == 0) {
        fatalError("the count of triggers being processed underflows");
    }
    if (--processingCount_ == 0) {
        processingChain_.reset();
        quietly([this] { assertion_.release(); });
    }
}

Async<void> AlertPipeline::process(TriggerReason reason, std::optional<Date> date)
{
    pendingReasons_.erase(reason);
    const AlarmSettings settings = with_.settings.settings();
    std::optional<Bytes> photo = co_await takePhoto(settings.capturePhoto);
    AlertEvent alert = makeAlertInAnyCase(reason, date, photo.has_value());
    alert.sendNotification = settings.sendNotification;
    const bool wasAvailable = with_.cloud.isAvailable;
    quietly([&] { keep(alert, photo, wasAvailable); });
    tasks_.add(actor_.spawn(uploadInAnyCase(std::move(alert), std::move(photo), wasAvailable)));
}

Async<std::optional<Bytes>> AlertPipeline::takePhoto(bool isWanted)
{
    if (!isWanted || quietly([this] { return with_.lid.isLidClosed(); })) {
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
AlertEvent AlertPipeline::makeAlertInAnyCase(TriggerReason reason, std::optional<Date> date, bool hasPhoto)
{
    try {
        return makeAlert(reason, date, hasPhoto);
    } catch (...) {
        return makeAlert(reason, date, hasPhoto);
    }
}

AlertEvent AlertPipeline::makeAlert(TriggerReason reason, std::optional<Date> date, bool hasPhoto)
{
    AlertEvent alert;
    alert.id = insistently([this] { return randomUUID(ports_.random); });
    if (alert.id == UUID{}) {
        alert.id = identifierOf(actor_.scheduler().now(), reason);
    }
    alert.reason = reason;
    alert.timestamp = date ? *date : insistently([this] { return ports_.wallClock.now(); });
    alert.deviceName = insistently([this] { return ports_.host.localizedName(); }).value_or("Mac");
    if (hasPhoto) {
        alert.photoFileName = alert.id.text() + ".jpg";
    }
    return alert;
}

/// Saves the alert on disk and shows it in the list. If saving fails, saves it without the photo (the disk may be
/// full), and the list holds alert and photo in memory.
void AlertPipeline::keep(const AlertEvent& alert, const std::optional<Bytes>& photo, bool isPending)
{
    if (saveLocally(alert, photo, isPending)) {
        with_.list.merge({alert, isPending});
        return;
    }
    if (photo) {
        AlertEvent bare = alert;
        bare.photoFileName.reset();
        static_cast<void>(saveLocally(bare, std::nullopt, isPending));
    }
    with_.list.hold(alert, photo);
}

bool AlertPipeline::saveLocally(const AlertEvent& alert, const std::optional<Bytes>& photo, bool isPending)
{
    const std::string id = alert.id.text();
    try {
        with_.store.save(alert, photo, isPending);
    } catch (...) {
        ports_.journal.note(events::AlertSaveFailed{id, textOfCurrentException()});
        return false;
    }
    ports_.journal.note(events::AlertSaved{id, rawValue(alert.reason), photo.has_value()});
    return true;
}

/// An upload that throws leaves its alert to the next catch-up, which begins at once and repeats itself.
Async<void> AlertPipeline::uploadInAnyCase(AlertEvent alert, std::optional<Bytes> photo, bool wasAvailable)
{
    const UUID id = alert.id;
    try {
        co_await upload(std::move(alert), std::move(photo), wasAvailable);
        co_return;
    } catch (...) {
        ports_.journal.note(events::UploadRaised{id.text()});
    }
    quietly([&] { with_.store.setPendingUpload(id); });
    quietly([this] { with_.list.catchUpIfOwed(); });
}

Async<void> AlertPipeline::upload(AlertEvent alert, std::optional<Bytes> photo, bool wasAvailable)
{
    const UUID id = alert.id;
    const bool isAvailable = co_await with_.cloud.checkAvailability();
    if (isAvailable) {
        co_await uploadNow(std::move(alert), std::move(photo));
    } else if (wasAvailable) {
        noteKept(id);
    } else {
        // If iCloud was already known to be unavailable, the alerts window says so instead.
        with_.notices.clearNotices();
    }
    co_await with_.list.refresh();
}

Async<void> AlertPipeline::uploadNow(AlertEvent alert, std::optional<Bytes> photo)
{
    const UUID id = alert.id;
    const auto outcome = co_await with_.uploader.upload(std::move(alert), std::move(photo));
    with_.list.noteAttempt(id, outcome);
    switch (outcome) {
    case AlertUploader::Outcome::uploaded:
        // Clears any other notice too: the alert is safe, and that is the news.
        with_.notices.clearNotices();
        with_.list.catchUpIfOwed(); // uploads that failed before may work now
        break;
    case AlertUploader::Outcome::deleted:
        with_.notices.clearLocalSaveNoticeIfResolved();
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
void AlertPipeline::noteKept(const UUID& id)
{
    if (with_.store.storedAlert(id)) {
        with_.notices.showLocalSaveNotice();
    }
}

} // namespace sentrel
