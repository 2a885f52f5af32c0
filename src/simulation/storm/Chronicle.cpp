#include "simulation/storm/Chronicle.hpp"

#include "simulation/stage/MacSession.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace sentrel::simulation {

namespace {

/// A login, a click or a typed passcode takes effect within this time, in seconds.
constexpr double atOnce = 3.0;

/// The Mac obeys no command that is older, in seconds; a little more for its way.
constexpr double longestCommandAge = 125.0;

/// The device of every Mac that the storm draws on which alarms sound.
constexpr ports::AudioObjectId builtInSpeaker = 73;

/// Seconds for which a change of the machine may go unnoticed: the sensors are polled every 5 s.
constexpr double longestNotice = 6.0;

} // namespace

Chronicle::Chronicle(MacSession& session) : session_(session)
{
    for (const auto& [name, switches] : session.mac().faults()) {
        ports_.push_back({.name = name, .switches = switches});
    }
    std::ranges::sort(ports_, {}, &Port::name);
}

void Chronicle::happened(const Event& event)
{
    const std::string_view name = event.name;
    at = event.at;
    if (name == "launched") {
        launchedAt = at;
        forgetHangs();
        passcodesTyped_ = 0;
    } else if (name == "defaults.damaged") {
        hasLostDefaults = true;
    } else if (name == "woke") {
        wokeAt = at;
    } else if (name == "slept") {
        sleptAt = at;
    } else if (name == "login" && event.text("answer") == "succeed") {
        loginAt = at;
    } else if (name == "displays.changed") {
        displaysAt = at;
    } else if (name == "power.changed") {
        const bool isOnAC = session_.mac().power.isOnAC().value_or(wasOnAC_);
        if (std::exchange(wasOnAC_, isOnAC) && !isOnAC) {
            const bool isSeen = settings_ && settings_->triggerOnUnplugged && !hadTrouble({"power-sources"}, at - 10.0);
            addCause("unplugged", isSeen);
        } else if (isOnAC) {
            for (Cause& cause : causes) {
                cause.isCertain = cause.isCertain && (cause.reason != "unplugged" || cause.at < at - longestNotice);
            }
        }
    } else if (name == "lid.changed") {
        const bool isClosed = session_.mac().lid.isClosed().value_or(false);
        if (!std::exchange(wasLidClosed_, isClosed) && isClosed) {
            // Opening is not announced: the lid must have been open long enough to be polled.
            constexpr double longestPoll = 2.5; // seconds
            const bool isSeen = settings_ && settings_->triggerOnLidClosed && at - lidOpenedAt_ > longestPoll &&
                                !hadTrouble({"lid", "workspace"}, at - 10.0);
            addCause("lidClosed", isSeen);
        } else if (!isClosed) {
            lidOpenedAt_ = at;
            for (Cause& cause : causes) {
                cause.isCertain = cause.isCertain && (cause.reason != "lidClosed" || cause.at < at - longestNotice);
            }
        }
    }
}

void Chronicle::addCause(std::string reason, bool isCertain)
{
    const bool isWatched =
        isUp_ && isArmed_ && !hasHung && at - armedSince > 1.0 && at - settingsDeedAt > longestNotice;
    const bool isLoud = settings_ && settings_->alarmSound;
    // A sensor whose registration has failed is only polled.
    const bool isPolled = hadTrouble({"power-sources", "lid", "workspace"}, armedSince - atOnce);
    causes.push_back({.at = at,
                      .reason = std::move(reason),
                      .isCertain = isCertain && isWatched,
                      .isLoud = isLoud,
                      .longestNotice = isPolled ? longestNotice : 0.0});
}

void Chronicle::willDo(double now, const Deed& deed, const Sight& before)
{
    at = deedAt = now;
    mayBeTroubled_ = hasActed_ = true;
    const auto mark = [now](bool happens, double& when) {
        if (happens) {
            when = now;
        }
    };
    mark(deed.setsArmed == true, armDeedAt);
    mark(deed.setsArmed == false, disarmDeedAt);
    mark(deed.stopsAlarm, stopDeedAt);
    mark(deed.usesScreen, screenDeedAt);
    mark(deed.quits, quitAt);
    mark(deed.jumpsClock, clockJumpedAt);
    mark(deed.changesSettings || deed.setsArmed.has_value(), settingsDeedAt);
    mark(deed.touchesOutput, outputDeedAt);
    mark(deed.cloudChange.has_value(), cloudChangedAt);
    mark(deed.cloudChange && (deed.cloudChange->user || deed.cloudChange->account), userChangedAt);
    mark(deed.passcode && *deed.passcode == passcode_, passcodeAt);
    if (deed.newPasscode) {
        passcode_ = *deed.newPasscode;
    }
    if (deed.passcode) {
        notePasscode(*deed.passcode == passcode_, before);
    }
    givesLogin_ = deed.login ? *deed.login == LoginAnswer::succeed : givesLogin_;
    if (deed.clicksStop && givesLogin_ && before.isSounding && before.covers == 0 && isUp_) {
        silenceDueSince = at;
    }
    if (deed.violentMotion) {
        addCause("motion", false);
    }
    if (deed.phoneCommand) {
        commands.push_back({now, *deed.phoneCommand});
    }
    if (deed.deletesAlerts) {
        listBeforeDeletion_ = before.listed;
        diskBeforeDeletion_ = before.onDisk;
    }
}

void Chronicle::notePasscode(bool isRight, const Sight& before)
{
    constexpr int mostBeforeLockout = 5;
    // A passcode that the keychain can't check counts as wrong.
    if (!isRight || hadTrouble({"keychain"}, at)) {
        addCause("lockBypassAttempt", false);
    }
    // A right one counts as well: a fault may make it a wrong one.
    const bool isTaken = before.covers > 0 && before.covers == before.displays;
    passcodesTyped_ += isTaken ? 1 : 0;
    unlockDueSince = isRight && isTaken && passcodesTyped_ <= mostBeforeLockout ? at : never;
}

void Chronicle::saw(const Sight& before, const Sight& now, bool hasChanged)
{
    at = now.at;
    noteTroubles();
    noteStates(before, now);
    if (hasChanged || listBeforeDeletion_) {
        noteAlerts(now);
    }
    noteSound(before, now);
}

void Chronicle::noteStates(const Sight& before, const Sight& now)
{
    const bool isUp = now.isRunning && !now.isAsleep;
    if (isUp != isUp_) {
        steadySince = isUp ? at : never;
    }
    if (!now.isRunning && before.isRunning) {
        endedAt = at;
        forgetHangs();
    }
    if (isUp_ && !isUp) {
        // A trigger whose alert has not reached the disk yet is lost with the process, or waits for the machine.
        for (Cause& cause : causes) {
            cause.isCertain = false;
        }
    }
    isUp_ = isUp;
    if (now.showsArmed != isArmed_) {
        armedSince = now.showsArmed ? at : never;
        disarmedSince = now.showsArmed ? never : at;
        for (Cause& cause : causes) {
            cause.isCertain = cause.isCertain && cause.at < at - longestNotice;
        }
    }
    isArmed_ = now.showsArmed;
    if (now.covers == 0 && unlockDueSince != never) {
        passcodesTyped_ = 0;
    }
    if (now.covers == 0 || !isUp) {
        unlockDueSince = never;
    }
    if (!now.isSounding || !isUp) {
        silenceDueSince = never;
    }
    if (now.settings && (!settings_ || !(*now.settings == *settings_))) {
        settingsBeforeThat = settings_ ? settings_ : now.settings;
        settings_ = now.settings;
    }
    settingsBefore = settings_;
    if (!isUp || !now.isOnline || !now.hasAccount) {
        userHiddenAt = at;
    }
    const bool isCalm = isUp && !hasHung && !mayBeTroubled_ && now.isOnline && now.hasAccount && !now.isStorageFull;
    calmSince = !isCalm ? never : calmSince == never ? at : calmSince;
    const auto since = [this](bool holds, double& when) { when = !holds ? never : when == never ? at : when; };
    since(isUp && now.holdsArmedAssertion != now.showsArmed, assertionOddSince);
    since(isUp && now.holdsAlarmAssertion, processingSince);
    since(isUp && (now.showsArmed != now.menuSaysArmed || (now.settings && now.settings->isArmed != now.showsArmed)),
          signsOddSince);
    since(now.owedDeletions > 0, owedSince);
    since(isUp && ringing && now.isSounding && isSoftened(now), softenedSince);
    since(isUp && now.covers > 0 && now.covers != now.displays, coversOddSince);
    if (isCalm && !timersAtRest && isAtRest()) {
        timersAtRest = now.timers;
    }
    if (isCalm && !memoryAtRest && isAtRest() && now.memoryReadAt == now.at) {
        memoryAtRest = now.memory;
    }
}

/// Whether the speaker on which alarms sound is muted or lower than the settings say.
bool Chronicle::isSoftened(const Sight& now) const
{
    constexpr float tolerance = 0.01F;
    const auto speaker = now.output.devices.find(builtInSpeaker);
    if (speaker == now.output.devices.end() || !settings_) {
        return false;
    }
    const auto& [volume, isMuted] = speaker->second;
    return isMuted || (volume && *volume < static_cast<float>(settings_->alarmVolume) - tolerance);
}

void Chronicle::noteAlerts(const Sight& now)
{
    if (listBeforeDeletion_) {
        for (const auto& [id, row] : *listBeforeDeletion_) {
            const auto known = alerts.find(id);
            // A fault may strike between the disk and the list.
            const auto stored = now.inCloud.find(now.user);
            const bool isUploaded = stored != now.inCloud.end() && stored->second.contains(id);
            const bool hasLeftDisk = diskBeforeDeletion_.contains(id) && !now.onDisk.contains(id) && !isUploaded;
            const bool hasLeftList = now.isRunning && !now.listed.contains(id);
            if (known == alerts.end()) {
                continue;
            }
            if (hasLeftList || hasLeftDisk) {
                known->second.deletedAt = std::min(known->second.deletedAt, at);
            }
            known->second.mayBeGone = known->second.mayBeGone || mayBeTroubled_ || !now.isRunning;
        }
        listBeforeDeletion_.reset();
    }
    for (const auto& [id, alert] : now.onDisk) {
        noteAlert(id, alert.reason);
    }
    for (const auto& [id, row] : now.listed) {
        noteAlert(id, row.reason);
    }
    for (const auto& [user, ids] : now.inCloud) {
        for (const UUID& id : ids) {
            noteAlert(id, {});
            KnownAlert& alert = alerts[id];
            if (alert.owner.empty()) {
                alert.owner = user;
            }
        }
    }
}

void Chronicle::noteAlert(const UUID& id, const std::string& reason)
{
    const auto [place, isNew] = alerts.try_emplace(id);
    if (!isNew) {
        return;
    }
    KnownAlert& alert = place->second;
    alert.mayBeGone = hadTrouble({"host"}, launchedAt);
    alert.reason = reason;
    alert.firstSeen = at;
    alert.hasCause = reason.empty();
    for (Cause& cause : causes) {
        if (cause.reason != reason) {
            continue;
        }
        cause.hasAlert = true;
        if (!alert.hasCause && !cause.isSpent) {
            cause.isSpent = true;
            alert.hasCause = true;
        }
    }
}

void Chronicle::noteSound(const Sight& before, const Sight& now)
{
    if (!now.isRunning) {
        if (ringing) {
            endRinging();
        }
        return;
    }
    // The beeps that an ended process has asked for are played to their end.
    constexpr double longestTail = 1.0; // seconds
    if (now.isSounding && !ringing && at - launchedAt < longestTail) {
        return;
    }
    if (now.isSounding) {
        if (!ringing) {
            constexpr double longestWay = 10.0;  // seconds from a cause to its sound
            constexpr double longestPause = 4.0; // seconds for which a sound that may have been stopped goes on pausing
            const bool hadCause = at - lastCauseAt() < longestWay || at - silentSince < longestPause || isSoundLate() ||
                                  hadTrouble({"power-sources", "lid", "workspace", "accelerometer"}, at - longestWay) ||
                                  at - wokeAt < longestWay;
            ringing = Ringing{at, at, outputBefore(before), hadCause};
            outputToRestore.reset();
        }
        ringing->lastHeard = at;
    } else if (ringing && now.isAsleep) {
        ringing->lastHeard = at;
    } else if (ringing && maySilenceAt(ringing->lastHeard)) {
        endRinging();
    }
}

/// Whether the devices that sound have failed since the last cause.
bool Chronicle::isSoundLate() const
{
    return !causes.empty() && hadTrouble({"audio", "audio-engine", "beep", "music"}, lastCauseAt());
}

/// The output before an alarm that begins.
std::optional<OutputState> Chronicle::outputBefore(const Sight& before) const
{
    constexpr double longestStart = 3.0; // seconds
    if (hasHung || isSoundLate() || hadTrouble({"audio", "audio-engine", "beep", "music"}, at - longestStart)) {
        return std::nullopt; // the output was taken over some time before the sound, or its beep, began
    }
    // An alarm that follows at once has found the output as the one before took it.
    const bool wasTouched = outputDeedAt >= rangSince;
    return wasTouched ? before.output : outputToRestore.value_or(before.output);
}

void Chronicle::endRinging()
{
    outputToRestore = ringing->before;
    rangSince = ringing->since;
    silentSince = at;
    ringing.reset();
}

bool Chronicle::mayBeDisarmedAt(double when) const
{
    const bool isOpen = settings_ && !settings_->requirePasswordForActions && when - screenDeedAt <= atOnce;
    const bool isQuitting =
        when - quitAt <= 10.0 && (isOpen || when - loginAt <= 10.0 || !settings_->requirePasswordForActions);
    return when - disarmDeedAt <= atOnce || when - loginAt <= atOnce || isOpen || isQuitting || hasCommand(false);
}

bool Chronicle::mayBeArmed() const
{
    return at - armDeedAt <= atOnce || at - screenDeedAt <= atOnce || hasCommand(true);
}

bool Chronicle::maySilenceAt(double when) const
{
    return mayBeDisarmedAt(when) || when - stopDeedAt <= atOnce || when - passcodeAt <= atOnce;
}

bool Chronicle::hasCommand(bool arms) const
{
    return std::ranges::any_of(commands, [&](const SentCommand& sent) {
        const double age = at - sent.at + sent.command.issuedAgo;
        // A clock that was set back takes old commands for new ones.
        return sent.command.arm == arms && (age <= longestCommandAge || clockJumpedAt != never);
    });
}

/// A command is applied once: the state that it explains has used it up.
void Chronicle::conclude(const Sight& before, const Sight& now)
{
    if (before.showsArmed != now.showsArmed && now.isRunning) {
        const bool isPersons = now.showsArmed ? at - std::max(armDeedAt, screenDeedAt) <= atOnce
                                              : at - std::max(disarmDeedAt, loginAt) <= atOnce;
        // A Mac that could not write down which command it has obeyed obeys it once more in its next process.
        const auto isUsed = [&](const SentCommand& sent) {
            return sent.command.arm == now.showsArmed && !hadTrouble({"user-defaults", "files"}, sent.at);
        };
        if (!isPersons) {
            std::erase_if(commands, isUsed);
            (now.showsArmed ? armDeedAt : disarmDeedAt) = at; // the owner's deed, by phone
        }
    }
    constexpr double restored = 3.0; // seconds after which the output was compared
    const double since = std::max({silentSince, launchedAt, wokeAt});
    if (outputToRestore && now.isRunning && !now.isAsleep && !ringing && at - since > restored) {
        outputToRestore.reset();
    }
    constexpr double remembered = 400.0; // seconds
    while (!causes.empty() && causes.front().at < at - remembered) {
        causes.pop_front();
    }
    if (!commands.empty() && clockJumpedAt == never) {
        std::erase_if(commands, [&](const SentCommand& sent) { return at - sent.at > longestCommandAge; });
    }
}

} // namespace sentrel::simulation
