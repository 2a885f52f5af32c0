#pragma once

#include "cloud/CloudKitService.hpp"
#include "core/SettingsStore.hpp"

#include <functional>
#include <memory>

namespace sentrel {

namespace platform {
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
        platform::UserDefaults& defaults;
        platform::HostInfo& host;
        platform::WallClock& wallClock;
        platform::Random& random;
        platform::Journal& journal;
    };

    MacPresenceService(MainActor actor, bool isCompatibleComputer, CloudKitService& cloud, SettingsStore& settings,
                       Alarm alarm, Ports ports);
    MacPresenceService(const MacPresenceService&) = delete;

    Observable<std::optional<std::string>> syncError; ///< of the last publication; none when it worked

    /// Begins the heartbeat and the polling for commands. Again: nothing.
    void start();

    /// Ends the heartbeat, before the last publication.
    void stopHeartbeat();

    /// Publishes this Mac's state. Never throws, but for a `CancellationError`; two calls never overlap, and the state
    /// that a call finds is published when it ends.
    [[nodiscard]] Async<void> publishState();

    /// The system has registered the application for pushes, or has failed to.
    void setPushTokenRegistered(bool isRegistered);
    [[nodiscard]] bool pushTokenRegistered() const;

    /// A push of the cloud has come.
    void receive(const platform::CloudNotification& notification);

    /// Ends the present wait between two polls at once; nothing when there is none.
    void wakePoll();

    /// The Mac has woken from sleep.
    void systemDidWake();

    /// This Mac's identifier in the catalog: made once, and kept.
    [[nodiscard]] std::string deviceID();
};

} // namespace sentrel
