#pragma once

#include "foundation/Json.hpp"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <variant>

namespace sentrel {

/// The user's settings. A new value holds the defaults, which also replace fields missing from a stored document.
struct AlarmSettings {
    bool isArmed = false;
    bool triggerOnUnplugged = true;
    bool triggerOnLidClosed = true;
    bool triggerOnMotion = true;
    double motionSensitivity = 0.35; ///< 0.1 (least) to 1.0 (most)
    bool sendNotification = true;
    bool alarmSound = true;
    double alarmVolume = 0.8; ///< 0 to 1
    bool capturePhoto = true;
    bool requirePasswordForActions = true;
    bool lockScreenOnArm = false;
    double lockScreenSleepDelay = 0.0; ///< seconds from arming to the lock screen
    bool triggerOnFailedUnlock = false;
    double failedUnlockAttemptLimit = 3.0; ///< rounded to a whole number, at least 1

    friend bool operator==(const AlarmSettings&, const AlarmSettings&) = default;
};

/// A field of the settings and its stored name.
struct AlarmSettingsField {
    std::string_view name;
    std::variant<bool AlarmSettings::*, double AlarmSettings::*> member;
};

/// All fields in the order in which they are declared and stored.
inline constexpr std::array<AlarmSettingsField, 14> alarmSettingsFields{{
    {"isArmed", &AlarmSettings::isArmed},
    {"triggerOnUnplugged", &AlarmSettings::triggerOnUnplugged},
    {"triggerOnLidClosed", &AlarmSettings::triggerOnLidClosed},
    {"triggerOnMotion", &AlarmSettings::triggerOnMotion},
    {"motionSensitivity", &AlarmSettings::motionSensitivity},
    {"sendNotification", &AlarmSettings::sendNotification},
    {"alarmSound", &AlarmSettings::alarmSound},
    {"alarmVolume", &AlarmSettings::alarmVolume},
    {"capturePhoto", &AlarmSettings::capturePhoto},
    {"requirePasswordForActions", &AlarmSettings::requirePasswordForActions},
    {"lockScreenOnArm", &AlarmSettings::lockScreenOnArm},
    {"lockScreenSleepDelay", &AlarmSettings::lockScreenSleepDelay},
    {"triggerOnFailedUnlock", &AlarmSettings::triggerOnFailedUnlock},
    {"failedUnlockAttemptLimit", &AlarmSettings::failedUnlockAttemptLimit},
}};

/// Encodes all fields, in order.
[[nodiscard]] Json encodeAlarmSettings(const AlarmSettings& settings);

/// A field that is missing or of the wrong type gets its default, so that settings of older and newer versions load.
/// None only when the document is not an object.
[[nodiscard]] std::optional<AlarmSettings> decodeAlarmSettings(const Json& document);

} // namespace sentrel

/// Hashes all fields, in order.
template <> struct std::hash<sentrel::AlarmSettings> {
    std::size_t operator()(const sentrel::AlarmSettings& settings) const noexcept;
};
