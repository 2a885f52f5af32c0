#pragma once

#include "simulation/Event.hpp"
#include "simulation/PlannedFaults.hpp"
#include "simulation/icloud/CloudFaults.hpp"
#include "simulation/storm/Deed.hpp"
#include "simulation/storm/Sight.hpp"

#include <algorithm>
#include <deque>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sentrel::simulation {

class FaultSwitches;
class MacSession;

inline constexpr double never = -std::numeric_limits<double>::infinity();

/// A reason for an alarm, as the devices show it.
struct Cause {
    double at = 0.0;
    std::string reason;
    bool isCertain = false;     ///< the product can't have missed it so far
    bool isLoud = false;        ///< it must be heard, too
    double longestNotice = 0.0; ///< seconds until the product must know of it
    bool hasAlert = false;      ///< an alert of its reason came after it
    bool isSpent = false;       ///< an alert was counted for it
};

/// The history of one alert since it was first seen.
struct KnownAlert {
    std::string reason;
    double firstSeen = 0.0;
    double deletedAt = std::numeric_limits<double>::infinity();
    /// A fault or the process's end has struck its deletion, or its process kept it in a temporary folder.
    bool mayBeGone = false;
    std::string owner; ///< the user in whose database it was first seen; empty before that
    bool hasCause = true;
};

/// An alarm that sounds.
struct Ringing {
    double since = 0.0;
    double lastHeard = 0.0;
    std::optional<OutputState> before; ///< the output before the alarm, if it is known
    bool hadCause = true;
};

/// Everything of a play's past that the invariants ask for. Fed with what devices report and people do, never with what
/// the product says of itself.
class Chronicle {
public:
    explicit Chronicle(MacSession& session);

    void happened(const Event& event);
    void willDo(double at, const Deed& deed, const Sight& before);
    /// `hasChanged`: whether anything but the time differs.
    void saw(const Sight& before, const Sight& now, bool hasChanged = true);

    /// Call when the invariants have been checked: what has been used up is forgotten.
    void conclude(const Sight& before, const Sight& now);

    /// Whether somebody who may do it disarms or arms just now.
    [[nodiscard]] bool mayBeDisarmed() const { return mayBeDisarmedAt(at); }
    [[nodiscard]] bool mayBeArmed() const;
    /// Whether the alarm may have fallen silent at that time: somebody who may do it has stopped it, then or since.
    [[nodiscard]] bool maySilenceAt(double when) const;

    double at = 0.0;

    // The last times at which something happened; `never` if it did not.
    double launchedAt = never;
    double endedAt = never;
    double wokeAt = never;
    double sleptAt = never;
    double loginAt = never;      ///< the Mac login was given
    double passcodeAt = never;   ///< the right passcode was typed
    double armDeedAt = never;    ///< the owner armed
    double disarmDeedAt = never; ///< the owner disarmed
    double stopDeedAt = never;   ///< the owner stopped the alarm
    double screenDeedAt = never; ///< somebody used the menu or a window
    double quitAt = never;
    double clockJumpedAt = never;
    double settingsDeedAt = never;
    double outputDeedAt = never; ///< somebody changed an output's volume, or the devices
    double displaysAt = never;
    double cloudChangedAt = never;
    double userChangedAt = never;
    double userHiddenAt = never; ///< something could keep the Mac from learning who is signed in
    double deedAt = never;       ///< anybody did anything

    // Since when something has held without a break.
    double armedSince = never; ///< `never` while disarmed
    double disarmedSince = 0.0;
    double steadySince = never; ///< launched, awake
    double calmSince = never;   ///< no fault, iCloud at hand, awake and running
    double assertionOddSince = never;
    double processingSince = never;
    double signsOddSince = never;
    double coversOddSince = never;
    double owedSince = never;     ///< deletions are owed
    double softenedSince = never; ///< an alarm sounds, and its speaker is muted or below the alarm's volume
    /// Since the right passcode was typed at a lock screen that must take it, and has not opened.
    double unlockDueSince = never;
    /// Since the owner, who gives the login, clicked on Stop Alarm, and the alarm has not stopped.
    double silenceDueSince = never;

    bool hasHung = false;         ///< a call of this process hangs
    bool hasLostDefaults = false; ///< the Mac has become another one to the phone, which still knows the old one

    std::deque<Cause> causes; ///< oldest first
    std::unordered_map<UUID, KnownAlert> alerts;
    std::optional<Ringing> ringing;
    double silentSince = never;                  ///< since the last alarm was silenced
    double rangSince = never;                    ///< when that alarm began
    std::optional<OutputState> outputToRestore;  ///< the output before that alarm, until it was seen again
    std::optional<AlarmSettings> settingsBefore; ///< the last that were readable
    std::optional<AlarmSettings> settingsBeforeThat;
    struct SentCommand {
        double at = 0.0;
        CompanionPhone::Command command;
    };
    std::vector<SentCommand> commands;       ///< that the Mac may still obey
    std::optional<std::size_t> timersAtRest; ///< in the first calm of a disarmed Mac
    std::optional<std::size_t> memoryAtRest; ///< bytes, likewise

    /// Whether one of the ports had a fault since that time.
    [[nodiscard]] bool hadTrouble(std::initializer_list<std::string_view> names, double since) const;
    /// Whether anything had a fault since that time.
    [[nodiscard]] bool hadTrouble(double since) const;
    /// Whether one of them was switched to fail, call after call, since that time.
    [[nodiscard]] bool wasBroken(std::initializer_list<std::string_view> names, double since) const;

    /// Whether a call of this process at one of the ports hangs.
    [[nodiscard]] std::size_t hungPorts(std::initializer_list<std::string_view> names) const;

    /// Whether nothing has failed, and nobody has done anything, for so many seconds.
    [[nodiscard]] bool isCalmFor(double seconds) const
    {
        return calmSince != never && at - std::max(calmSince, deedAt) > seconds;
    }

    /// Whether a disarmed Mac has been left alone for a quarter of an hour.
    [[nodiscard]] bool isAtRest() const
    {
        return calmSince != never && !isArmed_ && at - calmSince > 900.0 && at - disarmedSince > 900.0 &&
               at - deedAt > 300.0;
    }

    /// Whether the owner has just done what must have an effect: its deadline counts from now.
    [[nodiscard]] bool isNewlyDue() const { return unlockDueSince == at || silenceDueSince == at; }

    /// Whether a fault is set, or has just struck.
    [[nodiscard]] bool isTroubled() const { return mayBeTroubled_; }

    /// The time of the last cause for an alarm, certain or not.
    [[nodiscard]] double lastCauseAt() const { return causes.empty() ? never : causes.back().at; }

private:
    void noteTroubles();
    void noteTroublesOfUser(const std::vector<CallFault>& waiting, const std::vector<CloudFault>& refusals);
    void noteCauses(const Sight& before, const Sight& now);
    void noteAlerts(const Sight& now);
    void noteSound(const Sight& before, const Sight& now);
    void noteStates(const Sight& before, const Sight& now);
    [[nodiscard]] bool isSoftened(const Sight& now) const;
    void notePasscode(bool isRight, const Sight& before);
    void addCause(std::string reason, bool isCertain);
    void endRinging();
    [[nodiscard]] std::optional<OutputState> outputBefore(const Sight& before) const;
    [[nodiscard]] bool isSoundLate() const;
    [[nodiscard]] bool mayBeDisarmedAt(double when) const;

    /// The faults of one port.
    struct Port {
        std::string name;
        FaultSwitches* switches = nullptr;
        double lastTrouble = never;
        double lastBroken = never;       ///< switched to fail, call after call
        std::uint64_t hangsOfDevice = 0; ///< counted so far
        std::uint64_t hangsOfCalls = 0;
        bool hangs = false;     ///< a call of this process
        bool wasStruck = false; ///< at the last look, as below
        bool wasBroken = false;
    };

    [[nodiscard]] const Port& port(std::string_view name) const;
    void noteHangs(Port& port, std::uint64_t count, std::uint64_t& known);
    void noteHangsOfCalls();
    void forgetHangs();

    MacSession& session_;
    std::vector<Port> ports_; ///< by name
    std::string passcode_ = "2468";
    bool givesLogin_ = false;
    int passcodesTyped_ = 0; ///< since the last one that opened the lock screen, in this process
    std::optional<std::map<UUID, SeenRow>> listBeforeDeletion_;
    SeenAlerts diskBeforeDeletion_;
    bool mayBeTroubled_ = true;
    bool isUserHidden_ = true; ///< by a fault
    bool hasActed_ = true;     ///< somebody, since the last look
    bool wasOnAC_ = true;
    bool wasLidClosed_ = false;
    double lidOpenedAt_ = never;
    bool isArmed_ = false;
    bool isUp_ = false;
    std::optional<AlarmSettings> settings_;
    void noteAlert(const UUID& id, const std::string& reason);
    [[nodiscard]] bool hasCommand(bool arms) const;
};

} // namespace sentrel::simulation
