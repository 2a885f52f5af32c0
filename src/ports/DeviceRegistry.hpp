#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::ports {

/// The registry of the machine's devices and drivers. Any thread.
class DeviceRegistry {
public:
    virtual ~DeviceRegistry() = default;

    /// A numeric property (a Boolean counts as 0 or 1) of the first service of a class: `IOServiceMatching`,
    /// `IOServiceGetMatchingServices`, `IOIteratorNext`, `IORegistryEntryCreateCFProperty`. None when there is no such
    /// service or property, or when it isn't a number.
    [[nodiscard]] virtual std::optional<std::int64_t> number(const std::string& serviceClass,
                                                             const std::string& property) = 0;
};

} // namespace sentrel::ports
