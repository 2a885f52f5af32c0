#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::ports {

/// The application as a login item (`SMAppService.mainAppService`). Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// An `SMAppServiceStatus`: 0 not registered, 1 enabled, 2 requires approval, 3 not found.
    [[nodiscard]] virtual std::int64_t status() = 0;

    /// Returns the error's description, or none on success.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace sentrel::ports
