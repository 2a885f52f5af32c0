#include "simulation/storm/Weather.hpp"

#include "simulation/storm/Dice.hpp"
#include "simulation/storm/DrawnMac.hpp"
#include "simulation/storm/Occasion.hpp"
#include "simulation/storm/Saboteur.hpp"
#include "simulation/storm/Thief.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Calm that lets everything that waits come to its end.
constexpr std::int64_t calmLength = 25 * minute;

/// Makes up one life.
class Forecaster {
public:
    Forecaster(std::uint64_t seed, const std::vector<FaultyPort>& ports, const std::vector<FaultPoint>& points)
        : dice_(seed * 0x9E3779B97F4A7C15ULL + 1),
          saboteur_(dice_, ports, points),
          points_(points),
          turn_(seed * turnsOfWorld)
    {
        plan_.title = "Storm " + std::to_string(seed);
    }

    Plan make(double hours)
    {
        mac_ = describeMac(dice_, plan_);
        const auto end = static_cast<std::int64_t>(hours * static_cast<double>(hour));
        now_ = 2 * second;
        // A world of any length has about this many events, with long rests between them.
        const std::int64_t longestRest = std::max<std::int64_t>(end / 6, 2 * minute);
        while (now_ < end) {
            if (dice_.chance(60)) {
                challenge();
            } else {
                happen();
            }
            const std::int64_t rest = dice_.spread(second, longestRest);
            settle(rest);
            now_ += rest;
            if (dice_.chance(8)) {
                calm();
            }
        }
        calm();
        return std::move(plan_);
    }

private:
    void act(std::string action)
    {
        isOffline_ = action == "{network: down}" || (isOffline_ && action != "{network: up}");
        plan_.steps.push_back({now_, std::move(action)});
    }

    void wait(std::int64_t least, std::int64_t most) { now_ += dice_.spread(least, most); }

    /// A fault at the point whose turn it is, on an occasion on which it can strike.
    void challenge()
    {
        const FaultPoint& point = points_[turn_++ % points_.size()];
        FaultPoint::Chance chance = dice_.oneOf(point.chances);
        constexpr int tries = 4; // to find one that takes little time
        for (int i = 0; i < tries && occasions()[chance.occasion].isSlow; ++i) {
            chance = dice_.oneOf(point.chances);
        }
        const Occasion& occasion = occasions()[chance.occasion];
        if (occasion.needsPasscode && !std::exchange(mac_.hasPasscode, true)) {
            act("{set-passcode: \"2468\"}");
        }
        act("arm");
        now_ += 4 * second;
        live(occasion.setup);
        act(saboteur_.strike(point, chance.calls));
        live(occasion.acts);
        heal();
        live(occasion.after);
        mayRing_ = true;
    }

    void live(const std::vector<PlannedStep>& steps)
    {
        for (const PlannedStep& step : steps) {
            now_ += step.at;
            act(step.action);
        }
    }

    /// Alarms and faults mostly end before a long rest: few alarms sound for hours, and few owners forget to arm.
    void settle(std::int64_t rest)
    {
        if (isDisturbed_ && (rest > hour || dice_.chance(92))) {
            wait(second, 5 * minute);
            heal();
        }
        if (mayRing_ && (rest > 10 * minute ? dice_.below(200) != 0 : dice_.chance(70))) {
            act("plug-in");
            act("stop-alarm");
            mayRing_ = false;
        }
        if (dice_.chance(95)) {
            act("arm");
            isArmed_ = true;
        }
    }

    /// Something happens; the clock moves to its end.
    void happen()
    {
        if (!isArmed_ && dice_.chance(75)) {
            arm();
            wait(second, 2 * minute);
        }
        if (dice_.chance(45)) {
            disturb();
        }
        switch (dice_.below(17)) {
        case 0:
            return ownerIsBusy();
        case 1:
            return machineSleeps();
        case 2:
            return processEnds();
        case 3:
            return changeAccount();
        case 4:
            return changeNetwork();
        case 5:
            return tidyUp();
        case 6:
            return changeSettings();
        case 7:
            return usePhone();
        case 8:
            return changeDisplays();
        case 9:
            return moveClock();
        case 10:
            return slowCamera();
        default:
            return theft();
        }
    }

    void arm()
    {
        isArmed_ = true;
        if (dice_.chance(70)) {
            return act("arm");
        }
        if (dice_.chance(50)) {
            return act("{phone: arm}");
        }
        act("{menu: armed}");
    }

    void disarm()
    {
        isArmed_ = false;
        if (dice_.chance(60)) {
            return act("disarm");
        }
        if (dice_.chance(40)) {
            return act("{phone: disarm}");
        }
        asOwner("{menu: armed}");
    }

    /// The owner does it, who gives the login when asked.
    void asOwner(std::string action)
    {
        act("{login: succeed}");
        act(std::move(action));
        now_ += second;
        act("{login: cancel}");
    }

    void theft()
    {
        if (dice_.chance(20)) {
            act("{accelerometer: {sample: [0, 0, 1]}}");
        }
        mayRing_ = true;
        const std::int64_t attacks = dice_.between(1, 4);
        for (std::int64_t i = 0; i < attacks; ++i) {
            live(attack(dice_));
            wait(1, 20 * second);
            if (dice_.chance(40)) {
                live(resistance(dice_, mac_));
                wait(1, 10 * second);
            }
        }
        if (dice_.chance(15)) {
            processEnds();
        }
        wait(100, 5 * minute);
        endAlarm();
        now_ += dice_.between(0, 5) * second;
        act("plug-in");
        act("open-lid");
        if (dice_.chance(70)) {
            heal();
        }
    }

    void endAlarm()
    {
        switch (dice_.below(5)) {
        case 0:
            return act("stop-alarm");
        case 1:
            return asOwner("{menu: stopAlarm}");
        case 2:
            act("{type-passcode: \"2468\"}");
            now_ += 2 * second;
            return act("stop-alarm");
        default:
            return disarm();
        }
    }

    void ownerIsBusy()
    {
        static constexpr std::array<std::string_view, 9> uses{
            "{open: main}",    "{open: alerts}", "{close: main}",
            "{close: alerts}", "{menu: open}",   "{menu: close}",
            "refresh",         "{music: play}",  "{volume: {device: 73, value: 0.3}}"};
        act("{login: succeed}");
        for (std::int64_t i = dice_.between(1, 5); i > 0; --i) {
            act(std::string{dice_.oneOf(uses)});
            wait(50, 20 * second);
        }
        act("{login: cancel}");
    }

    void machineSleeps()
    {
        act("sleep");
        wait(second, 8 * hour);
        if (dice_.chance(30)) {
            act("unplug");
            mayRing_ = true;
            wait(second, minute);
        }
        act("wake");
        if (dice_.chance(50)) {
            wait(second, minute);
            act("plug-in");
        }
    }

    void processEnds()
    {
        if (dice_.chance(30)) {
            asOwner("quit");
            now_ += 5 * second;
        }
        act("crash");
        wait(100, minute);
        act("relaunch");
        isArmed_ = false;
        now_ += 3 * second;
    }

    void changeAccount()
    {
        static constexpr std::array<std::string_view, 6> accounts{
            "none", "noor", "noor", "restricted", "temporarily-unavailable", "{quota: full}"};
        const bool isUnreadable = dice_.chance(30);
        if (isUnreadable) {
            act("{icloud: {fail: {code: networkFailure, operation: fetchOne}}}"); // and so is the list
        }
        act("{icloud: " + std::string{dice_.oneOf(accounts)} + "}");
        if (dice_.chance(60)) {
            wait(100, 10 * minute);
            theft();
        }
        wait(second, hour);
        if (isUnreadable) {
            act("{icloud: {fail: none}}");
        }
        act("{icloud: {quota: ok}}");
        act("{icloud: {user: maya, account: available}}");
    }

    void changeNetwork()
    {
        if (dice_.chance(50)) {
            act("{network: down}");
        } else {
            act("{icloud: {latency: " + std::to_string(dice_.spread(80, 25 * second)) + "ms}}");
        }
        if (dice_.chance(70)) {
            wait(100, 10 * minute);
            theft();
        }
        wait(second, 30 * minute);
        act("{network: up}");
        act("{icloud: {latency: 80ms}}");
    }

    void tidyUp()
    {
        static constexpr std::array<std::string_view, 3> which{"oldest", "newest", "all"};
        if (dice_.chance(40)) {
            theft();
        }
        if (dice_.chance(40)) {
            act("{icloud: {loseAnswers: {times: 1, operation: modify}}}");
        }
        act("{delete-alerts: " + std::string{dice_.oneOf(which)} + "}");
        wait(10, minute);
        if (dice_.chance(30)) {
            processEnds();
        }
    }

    void changeSettings()
    {
        static constexpr std::array<std::string_view, 12> changes{
            "{alarmVolume: 0.3}",          "{alarmVolume: 1.0}",         "{alarmSound: true}",
            "{alarmSound: false}",         "{triggerOnUnplugged: true}", "{triggerOnMotion: false}",
            "{triggerOnMotion: true}",     "{triggerOnLidClosed: true}", "{lockScreenOnArm: true}",
            "{lockScreenSleepDelay: 5.0}", "{sendNotification: false}",  "{failedUnlockAttemptLimit: 1.0}"};
        for (std::int64_t i = dice_.between(1, 3); i > 0; --i) {
            act("{set: " + std::string{dice_.oneOf(changes)} + "}");
            wait(10, minute);
        }
    }

    void usePhone()
    {
        const std::string arm = dice_.chance(50) ? "true" : "false";
        if (dice_.chance(30)) {
            act("{phone: {arm: " + arm + ", issuedAgo: " + std::to_string(dice_.between(1, 240)) + "s}}");
        } else {
            act("{phone: {arm: " + arm + "}}");
        }
        if (dice_.chance(30)) {
            wait(10, minute);
            act(dice_.chance(50) ? "arm" : "disarm");
        }
        wait(second, 10 * minute);
        isArmed_ = false; // or not: who knows
    }

    void changeDisplays()
    {
        for (std::int64_t i = dice_.between(1, 4); i > 0; --i) {
            act("{displays: " + std::to_string(dice_.between(1, 4)) + "}");
            wait(1, minute);
        }
    }

    /// Photos come late, or after everybody has stopped waiting for them.
    void slowCamera()
    {
        act("{camera: {delay: " + std::to_string(dice_.spread(20, 60 * second)) + "ms}}");
        act("{set: {capturePhoto: true}}");
        theft();
        wait(second, minute);
        act("{camera: {delay: 0s}}");
    }

    void moveClock()
    {
        const std::string direction = dice_.chance(50) ? "ahead: " : "back: ";
        act("{clock: {" + direction + std::to_string(dice_.spread(second, 48 * hour)) + "ms}}");
    }

    /// Faults for what comes next.
    void disturb()
    {
        isDisturbed_ = true;
        for (std::int64_t i = dice_.between(1, 2); i > 0; --i) {
            act(saboteur_.nextFault());
        }
        wait(1, 2 * second);
    }

    /// The faults cease. Nothing else happens unless it must: what waits for the end of a fault hears of no change.
    void heal()
    {
        isDisturbed_ = false;
        for (std::string& cure : saboteur_.cures()) {
            act(std::move(cure));
        }
        if (isOffline_) {
            act("{network: up}");
        }
        if (std::exchange(saboteur_.mustRelaunch, false)) {
            act("crash");
            now_ += second;
            act("relaunch");
            now_ += 5 * second;
            isArmed_ = false;
        }
    }

    /// Nothing fails for a while.
    void calm()
    {
        act("wake");
        saboteur_.mustRelaunch = saboteur_.mustRelaunch || dice_.chance(40);
        heal();
        act("{icloud: {quota: ok}}");
        act("{icloud: {latency: 80ms}}");
        if (dice_.chance(50) || !mac_.hasAccount) {
            act("{icloud: {user: maya, account: available}}");
        }
        act("plug-in");
        act("open-lid");
        if (dice_.chance(50)) {
            act("stop-alarm");
        } else {
            act("disarm");
            isArmed_ = false;
        }
        now_ += calmLength;
        act("refresh");
        now_ += minute;
    }

    /// About as many points have their turn in one world.
    static constexpr std::uint64_t turnsOfWorld = 37;

    Dice dice_;
    Saboteur saboteur_;
    const std::vector<FaultPoint>& points_;
    std::uint64_t turn_;
    Plan plan_;
    DrawnMac mac_;
    std::int64_t now_ = 0;
    bool isArmed_ = false;
    bool isOffline_ = false;
    bool isDisturbed_ = false;
    bool mayRing_ = false;
};

} // namespace

Plan weather(std::uint64_t seed, double hours, const std::vector<FaultyPort>& ports,
             const std::vector<FaultPoint>& points)
{
    return Forecaster{seed, ports, points}.make(hours);
}

} // namespace sentrel::simulation
