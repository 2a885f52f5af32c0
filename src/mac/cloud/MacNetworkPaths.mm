#include "mac/Adapters.hpp"

#include "mac/foundation/CallCopy.hpp"
#include "runtime/SerialQueue.hpp"

#import <Network/Network.h>

#include <memory>
#include <mutex>
#include <utility>

namespace sentrel::mac {

namespace {

/// The monitor's callback, until it is closed.
class Listener {
public:
    explicit Listener(std::function<void(ports::NetworkPathStatus)> pathChanged) : pathChanged_(std::move(pathChanged))
    {
    }

    void tell(ports::NetworkPathStatus status)
    {
        const std::lock_guard guard{mutex_};
        callCopy(pathChanged_, status); // it may end the registration
    }

    /// Waits for a callback running on another thread; none follows.
    void close()
    {
        const std::lock_guard guard{mutex_};
        pathChanged_ = nullptr;
    }

private:
    std::recursive_mutex mutex_; // held by a callback that ends its own registration
    std::function<void(ports::NetworkPathStatus)> pathChanged_;
};

class PathMonitor final : public ports::Registration {
public:
    PathMonitor(SerialQueue& queue, std::function<void(ports::NetworkPathStatus)> pathChanged)
        : listener_(std::make_shared<Listener>(std::move(pathChanged)))
    {
        const std::shared_ptr<Listener> listener = listener_;
        nw_path_monitor_set_update_handler(monitor_, ^(nw_path_t path) {
            listener->tell(static_cast<ports::NetworkPathStatus>(nw_path_get_status(path)));
        });
        nw_path_monitor_set_queue(monitor_, (__bridge dispatch_queue_t)queue.executor().nativeQueue());
        nw_path_monitor_start(monitor_);
    }

    ~PathMonitor() override
    {
        nw_path_monitor_cancel(monitor_);
        listener_->close();
    }

private:
    const std::shared_ptr<Listener> listener_;
    const nw_path_monitor_t monitor_ = nw_path_monitor_create();
};

/// Path monitors of the Network framework.
class MacNetworkPaths final : public ports::NetworkPaths {
public:
    [[nodiscard]] ports::RegistrationPtr monitor(SerialQueue& queue,
                                                 std::function<void(ports::NetworkPathStatus)> pathChanged) override
    {
        return std::make_unique<PathMonitor>(queue, std::move(pathChanged));
    }
};

} // namespace

std::unique_ptr<ports::NetworkPaths> makeNetworkPaths()
{
    return std::make_unique<MacNetworkPaths>();
}

} // namespace sentrel::mac
