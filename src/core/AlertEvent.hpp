#pragma once

#include "core/TriggerReason.hpp"
#include "foundation/Date.hpp"
#include "foundation/Json.hpp"
#include "foundation/UUID.hpp"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace sentrel {

/// The record of one alarm.
struct AlertEvent {
    UUID id;
    TriggerReason reason = TriggerReason::unplugged;
    Date timestamp;                           ///< when the trigger fired
    std::string deviceName;                   ///< the computer's name at the time
    std::optional<std::string> photoFileName; ///< none when no photo was taken
    bool sendNotification = false;            ///< whether the companion app is to notify the user

    friend bool operator==(const AlertEvent&, const AlertEvent&) = default;
};

[[nodiscard]] Json encodeAlertEvent(const AlertEvent& alert);

/// Strict: none when a field is missing or malformed; only the photo's name may be absent.
[[nodiscard]] std::optional<AlertEvent> decodeAlertEvent(const Json& document);

} // namespace sentrel

template <> struct std::hash<sentrel::AlertEvent> {
    std::size_t operator()(const sentrel::AlertEvent& alert) const noexcept;
};
