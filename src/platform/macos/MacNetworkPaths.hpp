#pragma once

#include "platform/NetworkPath.hpp"

namespace sentrel::macos {

/// Path monitors of the Network framework.
class MacNetworkPaths final : public platform::NetworkPaths {
public:
    [[nodiscard]] platform::RegistrationPtr
    monitor(SerialQueue& queue, std::function<void(platform::NetworkPathStatus)> pathChanged) override;
};

} // namespace sentrel::macos
