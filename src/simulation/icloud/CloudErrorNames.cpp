#include "simulation/icloud/CloudErrorNames.hpp"

#include <array>
#include <charconv>
#include <memory>
#include <span>

namespace sentrel::simulation {

namespace {

// By code, from 1: `CKErrorCode` without its prefix.
constexpr std::array<std::string_view, 37> names{
    "internalError",
    "partialFailure",
    "networkUnavailable",
    "networkFailure",
    "badContainer",
    "serviceUnavailable",
    "requestRateLimited",
    "missingEntitlement",
    "notAuthenticated",
    "permissionFailure",
    "unknownItem",
    "invalidArguments",
    "resultsTruncated",
    "serverRecordChanged",
    "serverRejectedRequest",
    "assetFileNotFound",
    "assetFileModified",
    "incompatibleVersion",
    "constraintViolation",
    "operationCancelled",
    "changeTokenExpired",
    "batchRequestFailed",
    "zoneBusy",
    "badDatabase",
    "quotaExceeded",
    "zoneNotFound",
    "limitExceeded",
    "userDeletedZone",
    "tooManyParticipants",
    "alreadyShared",
    "referenceViolation",
    "managedAccountRestricted",
    "participantMayNeedVerification",
    "serverResponseLost",
    "assetNotAvailable",
    "accountTemporarilyUnavailable",
    "participantAlreadyInvited",
};

} // namespace

std::span<const std::string_view> cloudErrorNames()
{
    return names;
}

std::string cloudErrorName(int code)
{
    if (code < 1 || code > static_cast<int>(names.size())) {
        return std::to_string(code);
    }
    return std::string{names[static_cast<std::size_t>(code) - 1]};
}

std::optional<int> cloudErrorCode(std::string_view nameOrNumber)
{
    for (std::size_t place = 0; place < names.size(); ++place) {
        if (names[place] == nameOrNumber) {
            return static_cast<int>(place) + 1;
        }
    }
    int code = 0;
    const std::span digits{nameOrNumber};
    const char* const end = std::to_address(digits.end());
    const auto [stop, error] = std::from_chars(std::to_address(digits.begin()), end, code);
    if (error != std::errc{} || stop != end || code <= 0) {
        return std::nullopt;
    }
    return code;
}

ports::CloudError cloudError(int code, std::optional<double> retryAfter)
{
    ports::CloudError error{"CKErrorDomain", code, cloudErrorName(code)};
    error.retryAfter = retryAfter;
    return error;
}

} // namespace sentrel::simulation
