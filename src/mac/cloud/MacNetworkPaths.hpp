#pragma once

#include "ports/NetworkPath.hpp"

namespace sentrel::mac {

/// Path monitors of the Network framework.
class MacNetworkPaths final : public ports::NetworkPaths {
public:
    [[nodiscard]] ports::RegistrationPtr monitor(SerialQueue& queue,
                                                 std::function<void(ports::NetworkPathStatus)> pathChanged) override;
};

} // namespace sentrel::mac
