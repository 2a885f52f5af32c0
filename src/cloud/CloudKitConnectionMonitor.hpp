#pragma once

#include "cloud/CloudKitService.hpp"
#include "cloud/MacPresenceService.hpp"

namespace sentrel {

namespace platform {
class ApplicationNotifications;
class NetworkPaths;
} // namespace platform

/// What depends on iCloud and follows when it comes and goes: declared here, supplied from above. Main actor.
class CloudDependents {
public:
    virtual ~CloudDependents() = default;

    /// Does what waits for iCloud, which is available now. Never throws, but for a `CancellationError`.
    [[nodiscard]] virtual Async<void> catchUp() = 0;

    /// Brings the status texts up to date.
    virtual void refreshStatus() = 0;
};

/// Watches the network path and the iCloud account, and has everything that depends on them catch up: once for a burst
/// of changes, never twice at a time. Main actor only.
class CloudKitConnectionMonitor {
public:
    struct Ports {
        platform::NetworkPaths& networkPaths;
        platform::ApplicationNotifications& applicationNotifications;
        platform::Journal& journal;
    };

    CloudKitConnectionMonitor(MainActor actor, CloudKitService& cloud, CloudDependents& dependents,
                              MacPresenceService& presence, Ports ports);
    ~CloudKitConnectionMonitor();
    CloudKitConnectionMonitor(const CloudKitConnectionMonitor&) = delete;

    /// Begins the watch, for the life of the process. Again: nothing.
    void start();
};

} // namespace sentrel
