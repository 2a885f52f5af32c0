#pragma once

#include "platform/LoginAuthentication.hpp"

namespace sentrel::macos {

/// Requests to the LocalAuthentication framework.
class MacLoginAuthentication final : public platform::LoginAuthentication {
public:
    [[nodiscard]] std::unique_ptr<platform::LoginContext> makeContext() override;
};

} // namespace sentrel::macos
