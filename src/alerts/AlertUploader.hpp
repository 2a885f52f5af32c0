#pragma once

#include "cloud/CloudKitService.hpp"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace sentrel {

namespace ports {
class Journal;
}

/// Brings alerts into the cloud, each within `cloudTimeLimit` and never one twice at a time; tells the cloud service
/// and the journal how it went. Main actor only.
class AlertUploader {
public:
    enum class Outcome {
        uploaded,    ///< now, or by an earlier attempt whose answer was lost
        deleted,     ///< by the user, before it was uploaded: there is nothing to upload any more
        storageFull, ///< the user's iCloud storage
        unreachable, ///< the network is at fault
        timedOut,    ///< no answer within the time; the record may arrive all the same
        failed,      ///< anything else: whether the server asks for patience, the cloud's `requestBackoff` knows
    };

    AlertUploader(MainActor actor, CloudKitService& cloud, ports::Journal& journal);
    ~AlertUploader();
    AlertUploader(const AlertUploader&) = delete;

    /// Uploads the alert. While an attempt with it is under way, waits for that one's outcome instead. Throws only a
    /// `CancellationError`; the attempt goes on all the same.
    [[nodiscard]] Async<Outcome> upload(AlertEvent alert, std::optional<Bytes> photo);

    /// Whether an attempt with this alert is under way.
    [[nodiscard]] bool isUploading(const UUID& id) const { return attempts_.contains(id); }

    /// Whether the record may reach the server still, since an attempt with it was given up a short while ago.
    [[nodiscard]] bool mayArriveLate(const UUID& id) const;

    /// The user has deleted these alerts: no attempt with them begins any more in this run of the application.
    void discard(const std::unordered_set<UUID>& ids);
    [[nodiscard]] const std::unordered_set<UUID>& discarded() const { return discarded_; }

private:
    Async<Outcome> attempt(AlertEvent alert, std::optional<Bytes> photo);
    Outcome noteFailure(const UUID& id, const std::exception& error);

    MainActor actor_;
    CloudKitService& cloud_;
    ports::Journal& journal_;
    std::unordered_set<UUID> discarded_;
    std::unordered_map<UUID, Instant> givenUp_; ///< when a deadline passed, for as long as it matters
    std::unordered_map<UUID, Task<Outcome>> attempts_;
};

} // namespace sentrel
