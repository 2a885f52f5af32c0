#include "app/ProtectedSettings.hpp"

#include "core/AlarmSettings.hpp"

#include <algorithm>
#include <array>

namespace sentrel {

namespace {

// Includes more than the triggers: a thief at an armed Mac left open could first turn off the sound, the photo and the
// message to the owner, or turn down volume and sensitivity.
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
    // A higher limit allows more guesses; a lower one turns the owner's typing errors into alarms.
    const bool changesLimit = after.failedUnlockAttemptLimit != before.failedUnlockAttemptLimit;
    const bool locksLater = after.lockScreenSleepDelay > before.lockScreenSleepDelay;
    return std::ranges::any_of(switches, isTurnedOff) || std::ranges::any_of(strengths, isTurnedDown) || changesLimit ||
           locksLater;
}

} // namespace sentrel
