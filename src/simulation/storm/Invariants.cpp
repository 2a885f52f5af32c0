#include "simulation/storm/Invariants.hpp"

#include <algorithm>
#include <array>

namespace sentrel::simulation {

namespace {

/// Seconds in which an alarm begins to sound: the worker's beep and the watch's take up to two.
constexpr double longestStart = 3.0;

/// Seconds for which an alarm may pause: a tone that is started again, or beeps instead.
constexpr double longestPause = 4.0;

std::string textOf(const OutputState& output)
{
    std::string text = "default " + (output.defaultOutput ? std::to_string(*output.defaultOutput) : "none");
    for (const auto& [id, state] : output.devices) {
        text += ", " + std::to_string(id) + " at " + (state.first ? std::to_string(*state.first) : "no volume") +
                (state.second ? " muted" : "");
    }
    return text;
}

/// A certain trigger is heard soon.
Finding triggersAreHeard(const Instants& is)
{
    const auto isBroken = [&] {
        return is.past.wasBroken({"audio", "audio-engine", "beep", "music"}, is.now.at - 30.0) ||
               is.past.hungPorts({"audio", "audio-engine", "beep"}) > 1;
    };
    for (const Cause& cause : is.past.causes) {
        const double due = cause.at + cause.longestNotice + longestStart;
        const bool isDue = is.now.at > due && is.before.at <= due;
        if (cause.isCertain && cause.isLoud && isDue && !is.past.ringing && !is.past.maySilenceAt(cause.at) &&
            !isBroken()) {
            return "nothing is heard of " + cause.reason + " at " + std::to_string(cause.at) + " s";
        }
    }
    return std::nullopt;
}

/// An alarm that sounds has a trigger.
Finding soundHasCause(const Instants& is)
{
    if (is.past.ringing && is.past.ringing->since == is.now.at && !is.past.ringing->hadCause) {
        return "the alarm sounds for no reason";
    }
    return std::nullopt;
}

/// An alarm can't be turned down.
Finding alarmsStayLoud(const Instants& is)
{
    const double since = is.past.softenedSince;
    if (since == never || is.now.at - since <= settling || is.past.settingsDeedAt >= is.past.ringing->since) {
        return std::nullopt;
    }
    const bool isBroken =
        is.past.hasHung || is.past.hadTrouble({"audio", "audio-engine", "beep", "language", "user-defaults"},
                                              is.past.ringing->since - longestStart);
    if (!isBroken) {
        return "the speaker of the alarm is muted or turned down since " + std::to_string(since) + " s";
    }
    return std::nullopt;
}

/// An alarm sounds until somebody who may do it stops it.
Finding onlyTheOwnerSilences(const Instants& is)
{
    if (!is.past.ringing || is.now.isSounding || is.now.isAsleep) {
        return std::nullopt;
    }
    const double since = std::max(is.past.ringing->lastHeard, is.past.wokeAt);
    if (is.now.at - since <= longestPause) {
        return std::nullopt;
    }
    const bool isBroken = is.past.wasBroken({"audio", "audio-engine", "beep"}, since - settling) ||
                          is.past.hungPorts({"audio", "audio-engine", "beep"}) > 1;
    if (!isBroken) {
        return "the alarm fell silent at " + std::to_string(since) + " s, and nobody who may do it has stopped it";
    }
    return std::nullopt;
}

/// Once it is stopped, an alarm is silent.
Finding stoppedIsSilent(const Instants& is)
{
    const double stopped = std::max({is.past.stopDeedAt, is.past.disarmDeedAt, is.past.passcodeAt});
    const bool isOver = is.past.ringing && stopped > is.past.ringing->since && is.past.lastCauseAt() < stopped - 8.0;
    const bool hasRun = is.past.steadySince < stopped;
    if (!isOver || !hasRun || !is.now.isSounding || is.now.at - stopped <= settling) {
        return std::nullopt;
    }
    const bool isHeld = is.past.hasHung ||
                        is.past.wasBroken({"audio", "audio-engine", "keychain", "cryptography", "accelerometer", "lid",
                                           "power-sources", "workspace", "wall-clock", "random"},
                                          stopped - 10.0) ||
                        is.past.hadTrouble({"keychain", "cryptography", "displays", "audio-engine"}, stopped - 10.0);
    if (!isHeld) {
        return "the alarm still sounds " + std::to_string(is.now.at - stopped) + " s after it was stopped";
    }
    return std::nullopt;
}

/// Whether the icon, which tells whether the Mac is armed, may tell the old state: it could not be set, and is tried
/// again every second.
bool isIconStale(const Instants& is)
{
    return is.past.hadTrouble({"status-bar", "language"}, is.now.at - settling);
}

/// Nobody without login, passcode or phone disarms the Mac, and no command does it twice or late.
Finding onlyTheOwnerDisarms(const Instants& is)
{
    const bool isSameProcess = is.past.launchedAt < is.before.at && is.now.isRunning && is.before.isRunning;
    if (is.before.showsArmed && !is.now.showsArmed && isSameProcess && !is.past.mayBeDisarmed() && !isIconStale(is)) {
        return "the Mac is disarmed by nobody who may do it";
    }
    return std::nullopt;
}

/// The Mac arms itself for nobody.
Finding onlyTheOwnerArms(const Instants& is)
{
    if (!is.before.showsArmed && is.now.showsArmed && !is.past.mayBeArmed() && !isIconStale(is)) {
        return "the Mac is armed by nobody";
    }
    return std::nullopt;
}

/// The lock screen opens for the passcode alone.
Finding onlyThePasscodeUncovers(const Instants& is)
{
    const bool isSameProcess = is.past.launchedAt < is.before.at && is.now.isRunning && is.before.isRunning;
    if (is.before.covers > 0 && is.now.covers == 0 && isSameProcess && is.now.displays > 0 &&
        is.now.at - is.past.passcodeAt > settling && !is.past.hadTrouble({"displays"}, is.now.at - settling)) {
        return "the lock screen is gone without the passcode";
    }
    return std::nullopt;
}

/// Whether something due since then, `never` if nothing is, has had its time, and no fault has struck it.
bool isOverdue(const Instants& is, double since)
{
    return since != never && is.now.at - since > settling && !is.past.hasHung && !is.past.hadTrouble(since - 1.0);
}

/// The owner's click on Stop Alarm silences it after her login, also after a click that a fault has struck.
Finding theClickSilences(const Instants& is)
{
    const double since = is.past.silenceDueSince;
    if (!isOverdue(is, since) || is.past.lastCauseAt() > since - 8.0) {
        return std::nullopt;
    }
    return "Stop Alarm, clicked at " + std::to_string(since) + " s, has not silenced the alarm";
}

/// The right passcode opens the lock screen, also after one that a fault has struck.
Finding thePasscodeUncovers(const Instants& is)
{
    const double since = is.past.unlockDueSince;
    if (!isOverdue(is, since)) {
        return std::nullopt;
    }
    return "the right passcode, typed at " + std::to_string(since) + " s, has not opened the lock screen";
}

/// The lock screen covers every display.
Finding everyDisplayIsCovered(const Instants& is)
{
    const double since = is.past.coversOddSince;
    if (since == never || is.now.at - since <= settling) {
        return std::nullopt;
    }
    const bool isBroken = is.past.hasHung || is.past.hadTrouble({"displays"}, since - settling) ||
                          is.past.hadTrouble({"displays"}, is.past.displaysAt - settling);
    if (!isBroken) {
        return std::to_string(is.now.covers) + " of " + std::to_string(is.now.displays) + " displays are covered";
    }
    return std::nullopt;
}

/// After the alarm the output of sound is as it was before, also across a crash.
Finding outputIsRestored(const Instants& is)
{
    const Chronicle& past = is.past;
    if (!past.outputToRestore || !is.now.isRunning || is.now.isAsleep || past.ringing) {
        return std::nullopt;
    }
    const double since = std::max({past.silentSince, past.launchedAt, past.wokeAt});
    const bool isDue = is.now.at - since > settling && is.before.at - since <= settling;
    if (!isDue) {
        return std::nullopt;
    }
    const bool isTouched =
        past.outputDeedAt >= past.rangSince - settling || past.hasHung ||
        past.hadTrouble({"audio", "audio-engine", "user-defaults", "files"}, past.rangSince - settling);
    if (!isTouched && !(is.now.output == *past.outputToRestore)) {
        return "after the alarm the output is " + textOf(is.now.output) + " instead of " +
               textOf(*past.outputToRestore);
    }
    return std::nullopt;
}

/// Whether an assertion of this process could not be taken, or not be released: then it stays until the process ends.
bool hasAssertionFailed(const Instants& is)
{
    return is.past.hasHung || is.past.hadTrouble({"power-assertions"}, is.past.launchedAt);
}

/// The Mac is kept awake exactly while it is armed.
Finding assertionFollowsArming(const Instants& is)
{
    const double since = is.past.assertionOddSince;
    if (since == never || is.now.at - since <= settling) {
        return std::nullopt;
    }
    if (!hasAssertionFailed(is) && !isIconStale(is)) {
        return std::string{"the Mac is "} + (is.now.showsArmed ? "armed" : "not armed") + ", and its assertion is " +
               (is.now.holdsArmedAssertion ? "held" : "not held");
    }
    return std::nullopt;
}

/// The Mac is kept awake for an alert no longer than the alert takes.
Finding assertionFollowsProcessing(const Instants& is)
{
    const double since = std::max(is.past.processingSince, is.past.lastCauseAt());
    if (is.past.processingSince == never || is.now.at - since <= longestWay) {
        return std::nullopt;
    }
    if (!hasAssertionFailed(is)) {
        return "the assertion of an alert is held for nothing";
    }
    return std::nullopt;
}

/// The settings can be read at any time, and survive every end of the process, but for the armed state. A launch that
/// can't read the file of the defaults begins with new ones.
Finding settingsLoad(const Instants& is)
{
    const bool isLaunched = is.now.isRunning && !is.before.isRunning;
    if (!is.before.settings ||
        (isLaunched && is.past.hadTrouble({"user-defaults", "files"}, is.past.endedAt - settling))) {
        return std::nullopt;
    }
    if (!is.now.settings) {
        return "the stored settings can't be read any more";
    }
    const auto disarmed = [](AlarmSettings settings) {
        settings.isArmed = false;
        return settings;
    };
    if (isLaunched && !(disarmed(*is.before.settings) == disarmed(*is.now.settings))) {
        return "the launch has changed the settings";
    }
    return std::nullopt;
}

/// Icon, menu and stored settings tell the same. A Mac that doesn't tell its model is taken for no MacBook, whose
/// setting has no effect.
Finding signsAgree(const Instants& is)
{
    const double since = is.past.signsOddSince;
    if (since == never || is.now.at - since <= settling) {
        return std::nullopt;
    }
    const double changed = std::max(is.past.armedSince, is.past.disarmedSince);
    const bool isBroken =
        is.past.hasHung || is.past.hadTrouble({"user-defaults", "files", "status-bar", "language", "displays", "host"},
                                              std::max(changed, is.past.launchedAt) - settling);
    if (!isBroken) {
        const bool isStored = is.now.settings && is.now.settings->isArmed;
        return std::string{"the icon says "} + (is.now.showsArmed ? "armed" : "disarmed") + ", the menu " +
               (is.now.menuSaysArmed ? "armed" : "disarmed") + ", the stored settings " +
               (isStored ? "armed" : "disarmed");
    }
    return std::nullopt;
}

/// The owner's phone knows within a minute and a half whether the Mac is armed.
Finding phoneAgrees(const Instants& is)
{
    constexpr double longest = 95.0;   // three heartbeats
    constexpr double patience = 300.0; // for which the cloud may have asked at the end of its troubles
    const double changed = std::max({is.past.armedSince, is.past.disarmedSince, is.past.launchedAt});
    const bool isAsked =
        is.now.phoneAskedAt == is.now.at && is.now.phoneSaysArmed && is.now.user == "maya" && !is.past.hasLostDefaults;
    if (isAsked && is.past.isCalmFor(longest + patience) && is.now.at - changed > longest &&
        *is.now.phoneSaysArmed != is.now.showsArmed) {
        return std::string{"the phone says "} + (*is.now.phoneSaysArmed ? "armed" : "disarmed");
    }
    return std::nullopt;
}

/// Whether a disarmed Mac has rested long enough for everything to have come to its end.
bool isAtRest(const Instants& is)
{
    return is.past.calmSince != never && is.now.at - is.past.calmSince > calm && !is.now.showsArmed &&
           is.now.at - is.past.disarmedSince > calm && is.now.at - is.past.lastCauseAt() > calm &&
           is.now.at - is.past.deedAt > 300.0;
}

/// No timer outlives what it was for.
Finding timersEnd(const Instants& is)
{
    constexpr std::size_t some = 4;
    if (isAtRest(is) && is.past.timersAtRest && is.now.timers > *is.past.timersAtRest + some) {
        return std::to_string(is.now.timers) + " timers are armed at rest, after " +
               std::to_string(*is.past.timersAtRest);
    }
    return std::nullopt;
}

/// Nothing in memory outlives what it was for, but for what is kept of each alert.
Finding memoryIsFlat(const Instants& is)
{
    constexpr std::size_t some = std::size_t{3} << 20U;     // bytes
    constexpr std::size_t ofAlert = std::size_t{24} << 10U; // by product, server and storm together
    const bool isKnown = is.past.memoryAtRest && is.now.memory > 0 && is.now.memoryReadAt == is.now.at;
    if (isKnown && isAtRest(is) && is.now.memory > *is.past.memoryAtRest + some + is.past.alerts.size() * ofAlert) {
        return "memory has grown since the first rest, by more than the alerts explain";
    }
    return std::nullopt;
}

constexpr std::array<Invariant, 19> ofDevices{{
    {"triggers are heard", triggersAreHeard},
    {"sound has a cause", soundHasCause, onChange},
    {"alarms stay loud", alarmsStayLoud},
    {"only the owner silences", onlyTheOwnerSilences},
    {"stopped is silent", stoppedIsSilent},
    {"only the owner disarms", onlyTheOwnerDisarms, onChange},
    {"only the owner arms", onlyTheOwnerArms, onChange},
    {"only the passcode uncovers", onlyThePasscodeUncovers, onChange},
    {"the click silences", theClickSilences},
    {"the passcode uncovers", thePasscodeUncovers},
    {"every display is covered", everyDisplayIsCovered},
    {"the output is restored", outputIsRestored},
    {"an assertion while armed", assertionFollowsArming},
    {"an assertion while processing", assertionFollowsProcessing},
    {"settings load", settingsLoad, onChange},
    {"signs agree", signsAgree},
    {"the phone agrees", phoneAgrees},
    {"timers end", timersEnd, onChange},
    {"memory is flat", memoryIsFlat, onChange},
}};

} // namespace

const std::vector<Invariant>& invariants()
{
    static const std::vector<Invariant> all = [] {
        const std::span<const Invariant> ofAlerts = alertInvariants();
        std::vector<Invariant> together{ofAlerts.begin(), ofAlerts.end()};
        together.insert(together.end(), ofDevices.begin(), ofDevices.end());
        return together;
    }();
    return all;
}

} // namespace sentrel::simulation
