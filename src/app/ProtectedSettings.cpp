#include "app/ProtectedSettings.hpp"

#include "core/AlarmSettings.hpp"

#include <algorithm>
#include <array>

namespace sentrel {

namespace {

// Not only the triggers: somebody at an armed Mac that was left open would take the sound, the photo and the message
// to the owner away first, or turn volume and sensitivity down, which comes to the same.
constexpr std::array switches{
    &AlarmSettings::triggerOnUnplugged,
    &AlarmSettings::triggerOnLidClosed,
    &AlarmSettings::triggerOnMotion,
    &AlarmSettings::triggerOnFailedUnlock,
    &AlarmSettings::sendNotification,
    &AlarmSettings::alarmSound,
    &AlarmSettings::capturePhoto,
    &AlarmSettings::lockScreenOnArm,
    &AlarmSettings::requirePasswordForActions,
};

constexpr std::array strengths{&AlarmSettings::motionSensitivity, &AlarmSettings::alarmVolume};

} // namespace

bool loosensProtection(const AlarmSettings& before, const AlarmSettings& after)
{
    const auto isTurnedOff = [&](bool AlarmSettings::* field) { return before.*field && !(after.*field); };
    const auto isTurnedDown = [&](double AlarmSettings::* field) { return after.*field < before.*field; };
    // A higher limit leaves more guesses, a lower one lets anybody sound the alarm on the owner's typing errors.
    const bool changesLimit = after.failedUnlockAttemptLimit != before.failedUnlockAttemptLimit;
    const bool locksLater = after.lockScreenSleepDelay > before.lockScreenSleepDelay;
    return std::ranges::any_of(switches, isTurnedOff) || std::ranges::any_of(strengths, isTurnedDown) || changesLimit ||
           locksLater;
}

} // namespace sentrel
