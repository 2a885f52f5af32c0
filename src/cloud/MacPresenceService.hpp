#pragma once

#include "cloud/CloudKitService.hpp"
#include "core/SettingsStore.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Weak.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace sentrel {

namespace ports {
struct CloudNotification;
}

/// Makes this Mac visible to the companion phone, and obeys the phone's commands to arm and disarm. Main actor only.
class MacPresenceService {
public:
    /// What the service needs of the alarm.
    struct Alarm {
        std::function<bool()> isArmed;
        std::function<void(const AlarmSettings&)> syncWithSettings;
        std::function<void()> clearLocalSaveNoticeIfResolved;
    };
    struct Ports {
        ports::UserDefaults& defaults;
        ports::HostInfo& host;
        ports::WallClock& wallClock;
        ports::GeneralRandom& random;
        ports::Journal& journal;
    };

    MacPresenceService(MainActor actor, bool isCompatibleComputer, CloudKitService& cloud, SettingsStore& settings,
                       Alarm alarm, Ports ports);
    MacPresenceService(const MacPresenceService&) = delete;

    Observable<std::optional<std::string>> syncError; ///< of the last publication; none when it worked

    /// Begins the heartbeat and the polling for commands. Again: nothing.
    void start();

    /// Publishes this Mac's state and begins the heartbeat, also after `stopHeartbeat`. Nothing while it beats.
    void startHeartbeat();

    /// Ends the heartbeat, before the last publication.
    void stopHeartbeat();

    /// Publishes this Mac's state. Never throws, but for a `CancellationError`; on return the state that the call found
    /// is published, or could not be. A publication that is under way is waited for a second, and then withdrawn.
    [[nodiscard]] Async<void> publishState();

    /// Publishes the state in which the process leaves this Mac: not armed.
    [[nodiscard]] Async<void> publishLastState();

    /// The system has registered the application for pushes, or has failed to.
    void setPushTokenRegistered(bool isRegistered);
    [[nodiscard]] bool pushTokenRegistered() const;

    /// A push of the cloud has come.
    void receive(const ports::CloudNotification& notification);

    /// Ends the present wait between two polls at once; nothing when there is none.
    void wakePoll();

    /// The Mac has woken from sleep.
    void systemDidWake();

    /// This Mac's identifier in the catalog: made once, and kept.
    [[nodiscard]] std::string deviceID();

private:
    /// What iCloud said when it was asked for a command.
    struct PollAnswer {
        bool isGiven = false; ///< iCloud is available, and answered
        std::optional<RemoteCommand> command;
    };

    Async<void> beat();
    Async<void> publishAfter(Task<void> predecessor);
    Async<void> waitBriefly(Task<void> publication);
    Async<void> publishNow(bool isLeaving);
    Async<bool> publishIfAvailable(bool isLeaving);
    void startPublication();

    Async<void> pollForCommands();
    Async<bool> poll();
    Async<PollAnswer> askForCommand();
    [[nodiscard]] Duration pollWait() const;
    Async<void> sleepUntilWokenOrElapsed(Duration span);
    static Async<void> wakeAfter(Weak<MacPresenceService> weak, std::int64_t generation, Duration span);
    void pollSoon();
    void obey(const RemoteCommand& command);
    void apply(const RemoteCommand& command);
    void ignore(const RemoteCommand& command, std::string_view why);

    MainActor actor_;
    const bool isCompatibleComputer_;
    CloudKitService& cloud_;
    SettingsStore& settings_;
    Alarm alarm_;
    Ports ports_;
    bool hasStarted_ = false;
    Task<void> heartbeatTask_; ///< none while stopped
    bool pushTokenRegistered_ = false;
    std::shared_ptr<Semaphore> pollWakeContinuation_; ///< null unless the poll loop sleeps
    std::int64_t pollSleepGeneration_ = 0;
    bool pollRequested_ = false; ///< somebody asked for a poll since the last one began
    bool pollOwed_ = false;      ///< somebody asked for a poll, and none has got an answer since
    Task<void> publication_;
    Task<void> nextPublication_;                  ///< waits for the end of the present one
    bool nextIsLast_ = false;                     ///< it tells how the process leaves the Mac
    std::optional<RemoteCommand> handledCommand_; ///< the last one that was applied or ignored in this run
    TaskBag tasks_;
    WeakAnchor<MacPresenceService> anchor_{*this};
};

} // namespace sentrel
