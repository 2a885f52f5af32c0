#pragma once

#include "cloud/CloudKitService.hpp"

#include <optional>
#include <unordered_set>

namespace sentrel {

namespace platform {
class Journal;
}

/// One attempt at a time to bring an alert into the cloud, within 15 s; tells the cloud service and the journal how it
/// went. Main actor only.
class AlertUploader {
public:
    enum class Outcome {
        uploaded,
        storageFull, ///< the user's iCloud storage
        failed,
    };

    AlertUploader(MainActor actor, CloudKitService& cloud, platform::Journal& journal);

    /// Never throws, but for a `CancellationError`.
    [[nodiscard]] Async<Outcome> upload(AlertEvent alert, std::optional<Bytes> photo);

    /// Whether an attempt with this alert is under way.
    [[nodiscard]] bool isUploading(const UUID& id) const;
};

} // namespace sentrel
