#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"
#include "ports/CloudDatabase.hpp"
#include "simulation/icloud/ServerRecord.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::simulation {

/// `CKQuerySubscriptionOptions`.
struct SubscriptionOption {
    static constexpr std::uint64_t firesOnRecordCreation = 1;
    static constexpr std::uint64_t firesOnRecordUpdate = 2;
    static constexpr std::uint64_t firesOnRecordDeletion = 4;
    static constexpr std::uint64_t firesOnce = 8;
};

/// `CKQueryNotificationReason`.
enum class PushReason : std::int64_t { recordCreated = 1, recordUpdated = 2, recordDeleted = 3 };

/// The subscription as JSON text.
[[nodiscard]] std::string encodeSubscription(const ports::CloudSubscription& subscription);

/// Reads what `encodeSubscription` wrote; none for anything else.
[[nodiscard]] std::optional<ports::CloudSubscription> decodeSubscription(BytesView text);

/// The push's dictionary, as the system hands it to an application. `number` tells pushes apart; `owner` is the user's
/// record name.
[[nodiscard]] Json pushDictionary(const ports::CloudSubscription& subscription, const ServerRecord& record,
                                  PushReason reason, std::int64_t number, const std::string& owner);

} // namespace sentrel::simulation
