#pragma once

#include "platform/CloudError.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulated {

/// Those of `CKErrorCode` that the server gives of its own accord.
namespace CKError {
inline constexpr int internalError = 1;
inline constexpr int networkUnavailable = 3;
inline constexpr int networkFailure = 4;
inline constexpr int notAuthenticated = 9;
inline constexpr int unknownItem = 11;
inline constexpr int invalidArguments = 12;
inline constexpr int serverRecordChanged = 14;
inline constexpr int assetFileNotFound = 16;
inline constexpr int batchRequestFailed = 22;
inline constexpr int zoneBusy = 23;
inline constexpr int quotaExceeded = 25;
inline constexpr int limitExceeded = 27;
inline constexpr int assetNotAvailable = 35;
inline constexpr int accountTemporarilyUnavailable = 36;
} // namespace CKError

/// The names of the codes from 1, without gaps.
[[nodiscard]] std::span<const std::string_view> cloudErrorNames();

/// CloudKit's name of an error code, for example "networkFailure"; its digits when it has none.
[[nodiscard]] std::string cloudErrorName(int code);

/// The code of a name or of a positive number in digits; none for anything else.
[[nodiscard]] std::optional<int> cloudErrorCode(std::string_view nameOrNumber);

/// An error of CloudKit's own domain, its name being its description.
[[nodiscard]] platform::CloudError cloudError(int code, std::optional<double> retryAfter = std::nullopt);

} // namespace sentrel::simulated
