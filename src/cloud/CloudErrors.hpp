#pragma once

#include "ports/CloudAccount.hpp"
#include "ports/CloudConstants.hpp"

#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel {

namespace ports {
class CloudError;
class Language;
} // namespace ports

/// The error as CloudKit's own, or null if it isn't one.
[[nodiscard]] const ports::CloudError* cloudKitErrorOf(const std::exception& error);

/// Whether the error is CloudKit's and has this code.
[[nodiscard]] bool isCloudKitError(const std::exception& error, int code);

/// Whether the network is at fault: `CloudKitServiceError::networkUnavailable`, a missed deadline, or codes 3 and 4.
[[nodiscard]] bool isNetworkError(const std::exception& error);

/// Whether the server throttles requests: codes 6, 7 and 23.
[[nodiscard]] bool isThrottlingError(const std::exception& error);

/// The English message for an unavailable account; none for an available one.
[[nodiscard]] std::optional<std::string_view> accountMessage(ports::CloudAccountStatus status);

/// The message shown to the user, in the user's language; `status` is the last known account status.
[[nodiscard]] std::string userFacingMessage(const std::exception& error,
                                            std::optional<ports::CloudAccountStatus> status, ports::Language& language);

} // namespace sentrel
