#pragma once

#include "ports/Registration.hpp"

#include <cstdint>
#include <functional>

namespace sentrel {
class SerialQueue;
}

namespace sentrel::ports {

/// `nw_path_status_t`.
enum class NetworkPathStatus : std::int64_t { invalid = 0, satisfied = 1, unsatisfied = 2, satisfiable = 3 };

/// Watches the network path over all interfaces (`nw_path_monitor_t`).
class NetworkPaths {
public:
    virtual ~NetworkPaths() = default;

    /// Calls back on the queue with the present path and at each change. Called on the main thread; the queue outlives
    /// the registration.
    [[nodiscard]] virtual RegistrationPtr monitor(SerialQueue& queue,
                                                  std::function<void(NetworkPathStatus)> pathChanged) = 0;
};

} // namespace sentrel::ports
