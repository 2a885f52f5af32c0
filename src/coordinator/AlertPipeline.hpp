#pragma once

#include "core/AlertEvent.hpp"
#include "core/TriggerReason.hpp"
#include "foundation/Bytes.hpp"
#include "runtime/MainActor.hpp"
#include "sensors/PowerAssertion.hpp"

#include <cstdint>
#include <optional>
#include <set>

namespace sentrel {

class AlertUploader;
class CameraCapture;
class CloudKitService;
class LidMonitor;
class LocalAlertStore;
class MacAlertsService;
class SettingsStore;

namespace ports {
class GeneralRandom;
class HostInfo;
class Journal;
class WallClock;
} // namespace ports

/// The user's notices about alerts that are or are not in iCloud. Main actor only.
class UploadNotices {
public:
    /// Says that an alert is stored on this Mac until iCloud is available.
    virtual void showLocalSaveNotice() = 0;

    /// Clears that notice if no alert waits for upload.
    virtual void clearLocalSaveNoticeIfResolved() = 0;

    /// Clears every notice.
    virtual void clearNotices() = 0;

protected:
    ~UploadNotices() = default;
};

/// Takes each trigger to its alert: photo, `AlertEvent`, copy on this Mac, list, upload. Main actor only; everything
/// referred to outlives it. The work under way ends with it.
///
/// - Triggers are processed one after another, in their order. A failure concerns its own trigger only.
/// - A reason waits at most once; while it is processed, a further trigger of the same reason queues anew.
/// - An alert is stored on this Mac, or held in memory by the list, before any call to the cloud begins for it.
/// - An upload never delays the next trigger.
/// - The power assertion is held exactly while triggers are processed or wait.
class AlertPipeline {
public:
    struct Collaborators {
        SettingsStore& settings;
        LidMonitor& lid;
        CameraCapture& camera;
        LocalAlertStore& store;
        MacAlertsService& list;
        CloudKitService& cloud;
        AlertUploader& uploader;
        UploadNotices& notices;
    };
    struct Ports {
        ports::PowerAssertions& powerAssertions;
        ports::WallClock& wallClock;
        ports::GeneralRandom& random;
        ports::HostInfo& host;
        ports::Journal& journal;
    };

    AlertPipeline(MainActor actor, Collaborators collaborators, Ports ports);
    AlertPipeline(const AlertPipeline&) = delete;

    /// Queues an alert with the present time; no effect while the same reason waits.
    void add(TriggerReason reason);

    /// The number of triggers that are being processed or queued.
    [[nodiscard]] std::int64_t processingCount() const { return processingCount_; }

private:
    Async<void> processAfter(std::optional<Task<void>> predecessor, TriggerReason reason, std::optional<Date> date);
    Async<void> process(TriggerReason reason, std::optional<Date> date);
    void finishProcessing();
    Async<std::optional<Bytes>> takePhoto(bool isWanted);
    [[nodiscard]] AlertEvent makeAlertInAnyCase(TriggerReason reason, std::optional<Date> date, bool hasPhoto);
    [[nodiscard]] AlertEvent makeAlert(TriggerReason reason, std::optional<Date> date, bool hasPhoto);
    void keep(const AlertEvent& alert, const std::optional<Bytes>& photo, bool isPending);
    bool saveLocally(const AlertEvent& alert, const std::optional<Bytes>& photo, bool isPending);
    Async<void> uploadInAnyCase(AlertEvent alert, std::optional<Bytes> photo, bool wasAvailable);
    Async<void> upload(AlertEvent alert, std::optional<Bytes> photo, bool wasAvailable);
    Async<void> uploadNow(AlertEvent alert, std::optional<Bytes> photo);
    void noteKept(const UUID& id);

    MainActor actor_;
    Collaborators with_;
    Ports ports_;
    std::optional<Task<void>> processingChain_; ///< the last trigger's task
    std::int64_t processingCount_ = 0;
    std::set<TriggerReason> pendingReasons_; ///< queued, not yet being processed
    PowerAssertion assertion_;
    TaskBag tasks_;
};

} // namespace sentrel
