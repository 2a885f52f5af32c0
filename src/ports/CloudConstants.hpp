#pragma once

#include <cstdint>

namespace sentrel {

/// The codes of `CKErrorDomain` that the product distinguishes (`CKErrorCode`).
namespace CloudErrorCode {
inline constexpr int internalError = 1;
inline constexpr int partialFailure = 2;
inline constexpr int networkUnavailable = 3;
inline constexpr int networkFailure = 4;
inline constexpr int badContainer = 5;
inline constexpr int serviceUnavailable = 6;
inline constexpr int requestRateLimited = 7;
inline constexpr int missingEntitlement = 8;
inline constexpr int notAuthenticated = 9;
inline constexpr int permissionFailure = 10;
inline constexpr int unknownItem = 11;
inline constexpr int invalidArguments = 12;
inline constexpr int serverRecordChanged = 14;
inline constexpr int serverRejectedRequest = 15;
inline constexpr int operationCancelled = 20;
inline constexpr int zoneBusy = 23;
inline constexpr int quotaExceeded = 25;
inline constexpr int serverResponseLost = 34;
inline constexpr int accountTemporarilyUnavailable = 36;
} // namespace CloudErrorCode

namespace ports {

inline constexpr const char* cloudErrorDomain = "CKErrorDomain";
inline constexpr const char* cloudAccountChanged = "CKAccountChangedNotification";

// CKQuerySubscriptionOptions
inline constexpr std::uint64_t firesOnRecordCreation = 1U << 0U;
inline constexpr std::uint64_t firesOnRecordUpdate = 1U << 1U;

} // namespace ports

} // namespace sentrel
