#pragma once

#include "app/SentrelApp.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/HangingCalls.hpp"
#include "simulation/PlannedFaults.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/icloud/PrivateCloud.hpp"
#include "simulation/mac/SimulatedMac.hpp"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The silence between two beeps of an alarm: it repeats them after 0.9 s, or after 0.95 s if only its watch does.
inline constexpr Duration longestBeepPause = std::chrono::milliseconds{950} - Speaker::beepLength;

/// The alarm's audible output.
struct AlarmSound {
    std::string_view mode; ///< "tone" or "beep"
    ports::AudioObjectId device = 0;
    float volume = 0.0F; ///< volume of the device
};

/// Where the simulated server of a session keeps its databases.
enum class ServerDisk {
    folder, ///< `iCloud` on the session's disk
    memory  ///< gone with the session, and faster
};

/// Sets the passcode synchronously, although this is slow. False if the keychain refuses.
[[nodiscard]] bool storePasscode(UnlockPasscodeStore& store, std::string_view passcode);

/// A simulated MacBook with the product on it, in virtual time, and the actions of people on it. One thread.
///
/// When the product reports that its tone has started, the session checks the speaker and notes `alarm.heard` {mode,
/// device, volume} or `alarm.unheard`.
class MacSession {
public:
    /// Stories begin on Saturday, 14 June 2025, 09:41 UTC. An arbitrary date, fixed so that runs are reproducible.
    static constexpr Date storyDate{771586860.0};

    /// `disk` is an existing folder; `resources` holds the localisation tables.
    MacSession(const MacDescription& description, std::filesystem::path disk, std::filesystem::path resources,
               std::uint64_t seed, Date date = storyDate, ServerDisk server = ServerDisk::folder);
    ~MacSession();
    MacSession(const MacSession&) = delete;

    /// Starts the product.
    void launch();

    /// The process's memory is lost; its files stay.
    void crash();

    /// The user quits the product, which may ask for the login, cleans up and ends.
    void quit();

    /// Quits the product and starts it once it has ended; starts it at once if it isn't running.
    void relaunch();

    void sleep();
    void wake();
    [[nodiscard]] bool isAsleep() const { return isAsleep_; }

    void openLid();
    void closeLid();
    void sleepScreens();

    /// Changes the settings the way a window does.
    void changeSettings(const std::function<void(AlarmSettings&)>& change);
    void stopAlarm();

    /// Sets the unlock passcode the way a window does, and notes `passcode.set` {saved}.
    void setPasscode(std::string_view passcode);

    /// A person empties the first cover's passcode field, types, and presses return. Notes `typed.nowhere` if no cover
    /// takes it.
    void typePasscode(std::string_view passcode);

    /// The owner's phone sends its first Mac a command. Notes `phone.command` {sequence, arm}, `phone.noMac` if the
    /// phone knows none, or `phone.refused` {why} if the server refuses.
    void commandByPhone(const CompanionPhone::Command& command);

    /// Runs a function on the product's main thread, and then everything due. No effect while the product isn't
    /// running. A main thread that is busy or hangs runs it after this call or stops in the middle of it, so it must
    /// not refer to what the caller destroys.
    void onMain(const std::function<void(SentrelApp&)>& function);

    /// The product's main thread.
    [[nodiscard]] MainActor mainActor() { return MainActor{process_}; }

    [[nodiscard]] SentrelApp* app();
    [[nodiscard]] VirtualClock& clock() { return clock_; }
    [[nodiscard]] SimulatedMac& mac() { return mac_; }
    [[nodiscard]] EventLog& log() { return log_; }
    [[nodiscard]] PlannedFaults& plannedFaults() { return plannedFaults_; }

    /// Lets the world run at full speed again if no call can hang any more.
    void restFromHanging();

    [[nodiscard]] PrivateCloud& cloudServer() { return cloudServer_; }

    /// The phone of the initially signed-in user.
    [[nodiscard]] CompanionPhone& phone() { return phone_; }

    /// The audible alarm now; none if nothing is heard. A series of beeps counts as heard in its pauses too.
    [[nodiscard]] std::optional<AlarmSound> sound() const;

    /// Seconds since the session's start.
    [[nodiscard]] double seconds() const { return toSeconds(clock_.now().time_since_epoch()); }

private:
    void listenToAlarm();
    void dieInCall(CallFault::Fate fate);
    void bury();
    void processHasEnded();
    void endProcess();

    VirtualClock clock_;
    VirtualScheduler process_{clock_};
    VirtualScheduler hardware_{clock_};
    HangingCalls hanging_{clock_, process_};
    EventLog log_{hardware_};
    SimulatedWallClock serverClock_;
    PrivateCloud cloudServer_;
    CompanionPhone phone_;
    SimulatedMac mac_;
    PlannedFaults plannedFaults_{mac_.calls(), [this](CallFault::Fate fate) { dieInCall(fate); }};
    bool hasDied_ = false; ///< in a call; its objects are still there
    bool isAsleep_ = false;
    bool isRelaunching_ = false;
    std::unique_ptr<SentrelApp> app_;
};

} // namespace sentrel::simulation
