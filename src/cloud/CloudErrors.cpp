#include "cloud/CloudErrors.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudKitServiceError.hpp"
#include "core/LocalizedText.hpp"
#include "ports/CloudError.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace sentrel {

namespace {

using ports::CloudAccountStatus;
using ports::CloudError;
using AccountStatus = std::optional<CloudAccountStatus>;

constexpr std::string_view passwordMessage =
    "iCloud needs your Apple ID password.\nOpen Settings → Apple ID, sign in, then try again.";
constexpr std::string_view networkMessage = "Could not reach iCloud.\nCheck your connection and try again.";
constexpr std::string_view signInMessage = "Sign in to iCloud on both devices with the same Apple ID.";
constexpr std::string_view unknownMessage = "Something went wrong with iCloud. Try again.";

/// Whether the server rejects this user: not authenticated, permission failure.
bool isRefusal(const CloudError& error)
{
    return error.code == CloudErrorCode::notAuthenticated || error.code == CloudErrorCode::permissionFailure;
}

std::string_view messageOfCode(int code)
{
    switch (code) {
    case CloudErrorCode::internalError:
    case CloudErrorCode::serviceUnavailable:
    case CloudErrorCode::requestRateLimited:
    case CloudErrorCode::zoneBusy:
    case CloudErrorCode::serverResponseLost:
        return "iCloud is temporarily unavailable. Try again shortly.";
    case CloudErrorCode::badContainer:
    case CloudErrorCode::missingEntitlement:
        return "This app cannot access its iCloud container.\nCheck iCloud is enabled for Sentrel in Developer Portal.";
    case CloudErrorCode::notAuthenticated:
    case CloudErrorCode::permissionFailure:
        return signInMessage;
    case CloudErrorCode::invalidArguments:
    case CloudErrorCode::serverRejectedRequest:
        return "iCloud database is not ready.\nDeploy the CloudKit schema to Production in CloudKit Console.";
    case CloudErrorCode::operationCancelled:
        return "The iCloud request was cancelled.";
    case CloudErrorCode::quotaExceeded:
        return "Your iCloud storage is full.";
    case CloudErrorCode::accountTemporarilyUnavailable:
        return passwordMessage;
    default:
        return unknownMessage;
    }
}

bool asksForPassword(std::string description)
{
    constexpr std::array<std::string_view, 6> hints{"password",       "apple id",          "authenticate",
                                                    "authentication", "sign in to icloud", "not authenticated"};
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
    std::ranges::transform(description, description.begin(), lower);
    return std::ranges::any_of(hints,
                               [&](std::string_view hint) { return description.find(hint) != description.npos; });
}

std::string messageOfCloudKit(const CloudError& error, AccountStatus status, ports::Language& language)
{
    if (error.code == CloudErrorCode::partialFailure) {
        const std::string unknown = localizedInAnyCase(language, unknownMessage);
        for (const auto& [name, item] : error.itemErrors) {
            std::string message = userFacingMessage(item, status, language);
            if (message != unknown) {
                return message;
            }
        }
    }
    if (isRefusal(error) && status != CloudAccountStatus::noAccount) {
        return localizedInAnyCase(language, passwordMessage);
    }
    return localizedInAnyCase(language, messageOfCode(error.code));
}

} // namespace

const CloudError* cloudKitErrorOf(const std::exception& error)
{
    const auto* const cloudError = dynamic_cast<const CloudError*>(&error);
    return cloudError != nullptr && cloudError->domain == ports::cloudErrorDomain ? cloudError : nullptr;
}

bool isCloudKitError(const std::exception& error, int code)
{
    const CloudError* const cloudKitError = cloudKitErrorOf(error);
    return cloudKitError != nullptr && cloudKitError->code == code;
}

bool isNetworkError(const std::exception& error)
{
    if (const auto* const own = dynamic_cast<const CloudKitServiceError*>(&error)) {
        return own->kind() == CloudKitServiceError::Kind::networkUnavailable;
    }
    return dynamic_cast<const AsyncTimeout::TimedOut*>(&error) != nullptr ||
           isCloudKitError(error, CloudErrorCode::networkUnavailable) ||
           isCloudKitError(error, CloudErrorCode::networkFailure);
}

bool isThrottlingError(const std::exception& error)
{
    return isCloudKitError(error, CloudErrorCode::serviceUnavailable) ||
           isCloudKitError(error, CloudErrorCode::requestRateLimited) ||
           isCloudKitError(error, CloudErrorCode::zoneBusy);
}

std::optional<std::string_view> accountMessage(CloudAccountStatus status)
{
    switch (status) {
    case CloudAccountStatus::couldNotDetermine:
        return "Could not verify iCloud.\nOpen Settings → Apple ID and confirm your account.";
    case CloudAccountStatus::available:
        return std::nullopt;
    case CloudAccountStatus::restricted:
        return "iCloud access is restricted on this device.";
    case CloudAccountStatus::noAccount:
        return "Sign in to iCloud on your iPhone (Settings → Apple ID).";
    case CloudAccountStatus::temporarilyUnavailable:
        return passwordMessage;
    }
    return std::nullopt; // a status added by a later system
}

std::string userFacingMessage(const std::exception& error, AccountStatus status, ports::Language& language)
{
    if (const auto* const own = dynamic_cast<const CloudKitServiceError*>(&error)) {
        const bool isFixed = own->kind() != CloudKitServiceError::Kind::uploadFailed;
        return isFixed ? localizedInAnyCase(language, own->what()) : own->what();
    }
    if (isNetworkError(error)) {
        return localizedInAnyCase(language, networkMessage);
    }
    const CloudError* const cloudKitError = cloudKitErrorOf(error);
    // A refusal without an account has its own message, which names both devices.
    const bool isRefusedStranger =
        cloudKitError != nullptr && isRefusal(*cloudKitError) && status == CloudAccountStatus::noAccount;
    const auto ofAccount = status && !isRefusedStranger ? accountMessage(*status) : std::nullopt;
    if (ofAccount) {
        return localizedInAnyCase(language, *ofAccount);
    }
    if (cloudKitError != nullptr) {
        return messageOfCloudKit(*cloudKitError, status, language);
    }
    if (asksForPassword(error.what())) {
        return localizedInAnyCase(language, passwordMessage);
    }
    // The system describes its errors in the user's language; any other text is for developers.
    const bool isOfSystem = dynamic_cast<const CloudError*>(&error) != nullptr;
    return isOfSystem ? error.what() : localizedInAnyCase(language, unknownMessage);
}

} // namespace sentrel
