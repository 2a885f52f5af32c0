#pragma once

#include "ports/CloudError.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The values of `CKErrorCode` that occur without an injected fault.
struct CKError {
    static constexpr int internalError = 1;
    static constexpr int networkUnavailable = 3;
    static constexpr int networkFailure = 4;
    static constexpr int notAuthenticated = 9;
    static constexpr int unknownItem = 11;
    static constexpr int invalidArguments = 12;
    static constexpr int serverRecordChanged = 14;
    static constexpr int assetFileNotFound = 16;
    static constexpr int batchRequestFailed = 22;
    static constexpr int zoneBusy = 23;
    static constexpr int quotaExceeded = 25;
    static constexpr int limitExceeded = 27;
    static constexpr int assetNotAvailable = 35;
    static constexpr int accountTemporarilyUnavailable = 36;
};

/// The names of all codes, from code 1 without gaps.
[[nodiscard]] std::span<const std::string_view> cloudErrorNames();

/// CloudKit's name of an error code, for example "networkFailure"; its digits when it has none.
[[nodiscard]] std::string cloudErrorName(int code);

/// An error of CloudKit's domain with its name as the description.
[[nodiscard]] ports::CloudError cloudError(int code, std::optional<double> retryAfter = std::nullopt);

} // namespace sentrel::simulation
