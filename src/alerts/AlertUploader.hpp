#pragma once

#include "cloud/CloudKitService.hpp"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace sentrel {

namespace ports {
class Journal;
}

/// Uploads alerts, each within `cloudTimeLimit` and never in two attempts at once; reports each outcome to the cloud
/// service and the journal. Main actor only.
class AlertUploader {
public:
    enum class Outcome {
        uploaded,    ///< now, or by an earlier attempt whose answer was lost
        deleted,     ///< by the user before the upload; nothing was sent
        storageFull, ///< the user's iCloud storage is full
        unreachable, ///< the network is at fault
        timedOut,    ///< no answer within the time; the record may arrive all the same
        failed,      ///< any other failure; the cloud's `requestBackoff` tells of throttling
    };

    AlertUploader(MainActor actor, CloudKitService& cloud, ports::Journal& journal);
    ~AlertUploader();
    AlertUploader(const AlertUploader&) = delete;

    /// Uploads the alert, or waits for the outcome of an attempt that is under way. Throws only a `CancellationError`,
    /// which doesn't stop the attempt.
    [[nodiscard]] Async<Outcome> upload(AlertEvent alert, std::optional<Bytes> photo);

    /// Whether an attempt to upload this alert is under way.
    [[nodiscard]] bool isUploading(const UUID& id) const { return attempts_.contains(id); }

    /// Whether the record may still reach the server: an attempt timed out less than 60 s ago.
    [[nodiscard]] bool mayArriveLate(const UUID& id) const;

    /// Call when the user deletes these alerts: no further attempt begins in this run of the application.
    void discard(const std::unordered_set<UUID>& ids);
    [[nodiscard]] const std::unordered_set<UUID>& discarded() const { return discarded_; }

private:
    Async<Outcome> attempt(AlertEvent alert, std::optional<Bytes> photo);
    Async<Outcome> attemptOnce(AlertEvent alert, std::optional<Bytes> photo);
    Outcome noteFailure(const UUID& id, const std::exception& error);

    MainActor actor_;
    CloudKitService& cloud_;
    ports::Journal& journal_;
    std::unordered_set<UUID> discarded_;
    std::unordered_map<UUID, Instant> givenUp_; ///< times of missed deadlines, while they matter
    std::unordered_map<UUID, Task<Outcome>> attempts_;
};

} // namespace sentrel
