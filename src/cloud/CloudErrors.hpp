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

/// The error when it is CloudKit's own, or null.
[[nodiscard]] const ports::CloudError* cloudKitErrorOf(const std::exception& error);

/// Whether it is CloudKit's error of this code.
[[nodiscard]] bool isCloudKitError(const std::exception& error, int code);

/// The network is at fault: `CloudKitServiceError::networkUnavailable`, a missed deadline, or codes 3 and 4.
[[nodiscard]] bool isNetworkError(const std::exception& error);

/// The server asks for patience: codes 6, 7 and 23.
[[nodiscard]] bool isThrottlingError(const std::exception& error);

/// The message, in English, of an account that is not available; none for one that is.
[[nodiscard]] std::optional<std::string_view> accountMessage(ports::CloudAccountStatus status);

/// The one message, in the user's language, by which the user learns of the error; `status` is the account's last.
[[nodiscard]] std::string userFacingMessage(const std::exception& error,
                                            std::optional<ports::CloudAccountStatus> status, ports::Language& language);

} // namespace sentrel
