#pragma once

#include "foundation/Json.hpp"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <variant>

namespace sentrel {

/// What the user chose. A fresh value holds the defaults, which also stand in for what a stored document lacks.
struct AlarmSettings {
    bool isArmed = false;
    bool triggerOnUnplugged = true;
    bool triggerOnLidClosed = true;
    bool triggerOnMotion = true;
    double motionSensitivity = 0.35;
    bool sendNotification = true;
    bool alarmSound = true;
    double alarmVolume = 0.8; ///< 0 to 1
    bool capturePhoto = true;
    bool requirePasswordForActions = true;
    bool lockScreenOnArm = false;
    double lockScreenSleepDelay = 0.0; ///< seconds from arming to the lock screen
    bool triggerOnFailedUnlock = false;
    double failedUnlockAttemptLimit = 3.0; ///< shown as a whole number

    friend bool operator==(const AlarmSettings&, const AlarmSettings&) = default;
};

/// A field of the settings by its stored name.
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

/// All fields, in order.
[[nodiscard]] Json encodeAlarmSettings(const AlarmSettings& settings);

/// Forgiving, so that settings of an older or newer version still load: a field that is missing or of the wrong type
/// has its default. None only when the document is no object at all.
[[nodiscard]] std::optional<AlarmSettings> decodeAlarmSettings(const Json& document);

} // namespace sentrel

/// Over all fields, in order.
template <> struct std::hash<sentrel::AlarmSettings> {
    std::size_t operator()(const sentrel::AlarmSettings& settings) const noexcept;
};
