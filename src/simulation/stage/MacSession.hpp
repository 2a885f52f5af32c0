#pragma once

#include "app/SentrelApp.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/HangingCalls.hpp"
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

/// What the speaker lets be heard.
struct AlarmSound {
    std::string_view mode; ///< "tone" or "beep"
    ports::AudioObjectId device = 0;
    float volume = 0.0F; ///< that of the device
};

/// Sets the passcode now, slow as it is; false when the keychain refuses.
[[nodiscard]] bool storePasscode(UnlockPasscodeStore& store, std::string_view passcode);

/// A simulated MacBook with the product on it, in virtual time: what people do at it and what befalls it. One thread.
///
/// When the product says that its tone has started, the session listens to the speaker and notes `alarm.heard` {mode,
/// device, volume} or `alarm.unheard`.
class MacSession {
public:
    /// Stories begin on a Saturday morning, 14 June 2025, 09:41 UTC: a day is as good as another, and the same day
    /// makes the same run.
    static constexpr Date storyDate{771586860.0};

    /// The disk is an existing folder; resources hold the localisation tables.
    MacSession(const simulation::MacDescription& description, std::filesystem::path disk,
               std::filesystem::path resources, std::uint64_t seed, Date date = storyDate);
    ~MacSession();
    MacSession(const MacSession&) = delete;

    /// Starts the product.
    void launch();

    /// The process's memory is lost; its files stay.
    void crash();

    /// The user quits the product, which asks for the login if it wants to, cleans up and ends.
    void quit();

    /// The same, and starts it again once it has ended; starts it if it doesn't run.
    void relaunch();

    void sleep();
    void wake();
    [[nodiscard]] bool isAsleep() const { return isAsleep_; }

    void openLid();
    void closeLid();
    void sleepScreens();

    /// Writes fields of the settings as a window does.
    void changeSettings(const std::function<void(AlarmSettings&)>& change);
    void stopAlarm();

    /// Sets the unlock passcode as a window does, and notes `passcode.set` {saved}.
    void setPasscode(std::string_view passcode);

    /// Somebody empties the first cover's passcode field, types, and presses return. Notes `typed.nowhere` when no
    /// cover takes it.
    void typePasscode(std::string_view passcode);

    /// The owner's phone sends its first Mac a command. Notes `phone.command` {sequence, arm}, `phone.noMac` when the
    /// phone knows of none, or `phone.refused` {why} by the server.
    void commandByPhone(const simulation::CompanionPhone::Command& command);

    /// Runs a function on the product's main thread, and everything that is then due. Nothing while it doesn't run.
    void onMain(const std::function<void(SentrelApp&)>& function);

    /// The product's main thread.
    [[nodiscard]] MainActor mainActor() { return MainActor{process_}; }

    [[nodiscard]] SentrelApp* app() { return app_.get(); }
    [[nodiscard]] VirtualClock& clock() { return clock_; }
    [[nodiscard]] simulation::SimulatedMac& mac() { return mac_; }
    [[nodiscard]] simulation::EventLog& log() { return log_; }
    [[nodiscard]] simulation::PrivateCloud& cloudServer() { return cloudServer_; }

    /// The phone of the user who is signed in at first.
    [[nodiscard]] simulation::CompanionPhone& phone() { return phone_; }

    /// What is heard now; none while nothing is. A series of beeps is heard also in the pauses between them.
    [[nodiscard]] std::optional<AlarmSound> sound() const;

    /// Seconds since the session's start.
    [[nodiscard]] double seconds() const { return toSeconds(clock_.now().time_since_epoch()); }

private:
    void listenToAlarm();
    void processHasEnded();
    void endProcess();

    VirtualClock clock_;
    VirtualScheduler process_{clock_};
    VirtualScheduler hardware_{clock_};
    simulation::HangingCalls hanging_{clock_, process_};
    simulation::EventLog log_{hardware_};
    simulation::SimulatedWallClock serverClock_;
    simulation::PrivateCloud cloudServer_;
    simulation::CompanionPhone phone_;
    simulation::SimulatedMac mac_;
    bool isAsleep_ = false;
    bool isRelaunching_ = false;
    std::unique_ptr<SentrelApp> app_;
};

} // namespace sentrel::simulation
