#pragma once

#include "alerts/StoredAlert.hpp"
#include "foundation/Bytes.hpp"
#include "runtime/Async.hpp"

#include <optional>

namespace sentrel {

// What the alarm coordinator needs of services beyond the sensors, the sound and the local store. All are used on the
// main thread.

/// The user's private cloud database.
class AlarmCloud {
public:
    virtual ~AlarmCloud() = default;

    /// What the latest check found.
    [[nodiscard]] virtual bool isAvailable() const = 0;

    /// Checks whether alerts can be uploaded now; may throw.
    [[nodiscard]] virtual Async<bool> checkAvailability() = 0;

    /// Uploads the alert with its photo; throws `platform::CloudError` or another error.
    [[nodiscard]] virtual Async<void> upload(AlertEvent alert, std::optional<Bytes> photo) = 0;
};

/// The list of alerts that the user sees.
class AlarmList {
public:
    virtual ~AlarmList() = default;

    [[nodiscard]] virtual bool holds(const UUID& id) const = 0;
    virtual void merge(const StoredAlert& stored) = 0;
    virtual void setICloudStorageIsFull(bool isFull) = 0;
    virtual void refreshStorageNotice() = 0;
    [[nodiscard]] virtual Async<void> refresh() = 0;
};

/// The record by which the phone knows this Mac.
class AlarmPresence {
public:
    virtual ~AlarmPresence() = default;

    /// Publishes the Mac's current state.
    [[nodiscard]] virtual Async<void> publishState() = 0;
};

} // namespace sentrel
