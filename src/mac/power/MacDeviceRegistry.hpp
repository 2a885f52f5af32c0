#pragma once

#include "ports/DeviceRegistry.hpp"

namespace sentrel::mac {

/// The I/O registry.
class MacDeviceRegistry final : public ports::DeviceRegistry {
public:
    [[nodiscard]] std::optional<std::int64_t> number(const std::string& serviceClass,
                                                     const std::string& property) override;
};

} // namespace sentrel::mac
