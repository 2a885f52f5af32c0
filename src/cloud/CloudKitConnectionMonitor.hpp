#pragma once

#include "cloud/CloudKitService.hpp"
#include "cloud/MacPresenceService.hpp"
#include "ports/NetworkPath.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Weak.hpp"

#include <cstdint>
#include <mutex>

namespace sentrel {

namespace ports {
class ApplicationNotifications;
} // namespace ports

/// Everything that depends on iCloud, implemented by a higher layer. Main actor only.
class CloudDependents {
public:
    virtual ~CloudDependents() = default;

    /// Another user has signed in to iCloud since the last check: hides everything of the previous user.
    virtual void userDidChange() = 0;

    /// Does the work that waited for iCloud, which is available now. Never throws, but for a `CancellationError`.
    [[nodiscard]] virtual Async<void> catchUp() = 0;

    /// Brings the status texts up to date.
    virtual void refreshStatus() = 0;
};

/// Watches the network path and the iCloud account, and makes everything that depends on them catch up: once for a
/// burst of changes, one pass at a time. Main actor only.
class CloudKitConnectionMonitor {
public:
    struct Ports {
        ports::NetworkPaths& networkPaths;
        ports::ApplicationNotifications& applicationNotifications;
        ports::Journal& journal;
    };

    CloudKitConnectionMonitor(MainActor actor, CloudKitService& cloud, CloudDependents& dependents,
                              MacPresenceService& presence, Ports ports);
    ~CloudKitConnectionMonitor();
    CloudKitConnectionMonitor(const CloudKitConnectionMonitor&) = delete;

    /// Starts watching, for the life of the process. Further calls have no effect.
    void start();

private:
    void pathChanged(const Weak<CloudKitConnectionMonitor>& weak, ports::NetworkPathStatus status);
    void apply(ports::NetworkPathStatus status, std::int64_t sequence);
    static Async<void> debounce(Weak<CloudKitConnectionMonitor> weak);
    void accountDidChange();
    Async<void> verifyOwnerAndFanOut();
    Async<void> verifyOwner();
    void requestFanOut();
    Async<void> fanOut();
    Async<void> passOnce();

    MainActor actor_;
    CloudKitService& cloud_;
    CloudDependents& dependents_;
    MacPresenceService& presence_;
    Ports ports_;
    bool hasStarted_ = false;
    Task<void> debouncedPathTask_;
    bool fanOutRunning_ = false;
    bool fanOutRerunRequested_ = false;
    std::mutex pathSequenceLock_;
    std::int64_t pathSequence_ = 0; ///< path updates received; counted on the queue
    std::int64_t lastAppliedPathSequence_ = 0;
    SerialQueue queue_;
    ports::RegistrationPtr monitor_;
    ports::RegistrationPtr accountObserver_;
    TaskBag tasks_;
    WeakAnchor<CloudKitConnectionMonitor> anchor_{*this};
};

} // namespace sentrel
