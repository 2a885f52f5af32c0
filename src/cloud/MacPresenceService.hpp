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
    /// The alarm's functions that the service uses.
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

    Observable<std::optional<std::string>> syncError; ///< of the last failed publication; none after a success

    /// Starts the heartbeat and the polling for commands. Further calls have no effect.
    void start();

    /// Publishes this Mac's state and starts the heartbeat, also after `stopHeartbeat`. No effect while it runs.
    void startHeartbeat();

    /// Ends the heartbeat; call before the last publication.
    void stopHeartbeat();

    /// Publishes this Mac's state as of the call or later. Returns once that has succeeded or failed; throws only a
    /// `CancellationError`. A publication under way is given a second, and then cancelled.
    [[nodiscard]] Async<void> publishState();

    /// Publishes this Mac as not armed, its state after the process ends.
    [[nodiscard]] Async<void> publishLastState();

    /// Call when the registration for pushes has succeeded or failed.
    void setPushTokenRegistered(bool isRegistered);
    [[nodiscard]] bool pushTokenRegistered() const;

    /// Call when a push of the cloud arrives.
    void receive(const ports::CloudNotification& notification);

    /// Ends the current wait between two polls; no effect when there is none.
    void wakePoll();

    /// Call when the Mac has woken from sleep.
    void systemDidWake();

    /// This Mac's identifier in the catalog, created once and stored.
    [[nodiscard]] std::string deviceID();

private:
    /// The outcome of asking iCloud for a command.
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
    void noteSequence(const RemoteCommand& command);
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
    bool pollRequested_ = false; ///< a poll was requested since the last one began
    bool pollOwed_ = false;      ///< a requested poll has had no answer yet
    Task<void> publication_;
    Task<void> nextPublication_;                  ///< waits for the end of the current one
    bool nextIsLast_ = false;                     ///< `nextPublication_` is the last
    std::optional<RemoteCommand> handledCommand_; ///< the last one that was applied or ignored in this run
    TaskBag tasks_;
    WeakAnchor<MacPresenceService> anchor_{*this};
};

} // namespace sentrel
