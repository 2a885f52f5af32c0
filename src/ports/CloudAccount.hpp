#pragma once

#include "runtime/Async.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::ports {

/// `CKAccountStatus`.
enum class CloudAccountStatus : std::int64_t {
    couldNotDetermine = 0,
    available = 1,
    restricted = 2,
    noAccount = 3,
    temporarilyUnavailable = 4,
};

/// The user's iCloud account (`CKContainer`). The application's notification center posts
/// `CKAccountChangedNotification` when it changes. Calls start and resume on the main thread; they throw `CloudError`
/// and, when cancelled, `CancellationError`.
class CloudAccount {
public:
    virtual ~CloudAccount() = default;

    [[nodiscard]] virtual Async<CloudAccountStatus> accountStatus() = 0;

    /// The record name of the current user's record; none when the system gives no record.
    [[nodiscard]] virtual Async<std::optional<std::string>> userRecordName() = 0;
};

} // namespace sentrel::ports
