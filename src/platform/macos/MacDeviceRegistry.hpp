#pragma once

#include "platform/DeviceRegistry.hpp"

namespace sentrel::macos {

/// The I/O registry.
class MacDeviceRegistry final : public platform::DeviceRegistry {
public:
    [[nodiscard]] std::optional<std::int64_t> number(const std::string& serviceClass,
                                                     const std::string& property) override;
};

} // namespace sentrel::macos
