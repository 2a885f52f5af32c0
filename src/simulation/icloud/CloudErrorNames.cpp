#include "simulation/icloud/CloudErrorNames.hpp"

#include <array>
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

ports::CloudError cloudError(int code, std::optional<double> retryAfter)
{
    ports::CloudError error{"CKErrorDomain", code, cloudErrorName(code)};
    error.retryAfter = retryAfter;
    return error;
}

} // namespace sentrel::simulation
