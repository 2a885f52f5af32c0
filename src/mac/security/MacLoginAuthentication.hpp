#pragma once

#include "ports/LoginAuthentication.hpp"

namespace sentrel::mac {

/// Requests to the LocalAuthentication framework.
class MacLoginAuthentication final : public ports::LoginAuthentication {
public:
    [[nodiscard]] std::unique_ptr<ports::LoginContext> makeContext() override;
};

} // namespace sentrel::mac
