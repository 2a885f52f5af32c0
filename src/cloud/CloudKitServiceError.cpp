#include "cloud/CloudKitServiceError.hpp"

namespace sentrel {

namespace {

std::string messageOf(CloudKitServiceError::Kind kind)
{
    switch (kind) {
    case CloudKitServiceError::Kind::notSignedIn:
        return "Sign in to iCloud on both devices with the same Apple ID.";
    case CloudKitServiceError::Kind::networkUnavailable:
        return "Could not reach iCloud.\nCheck your connection and try again.";
    case CloudKitServiceError::Kind::uploadFailed:
        break;
    }
    return "Something went wrong with iCloud. Try again.";
}

} // namespace

CloudKitServiceError::CloudKitServiceError(Kind itsKind) : CloudKitServiceError(itsKind, messageOf(itsKind))
{
}

CloudKitServiceError CloudKitServiceError::uploadFailed(std::string message)
{
    return CloudKitServiceError{Kind::uploadFailed, std::move(message)};
}

} // namespace sentrel
