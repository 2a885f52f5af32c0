#pragma once

#include "foundation/FourCharCode.hpp"

#include <cstdint>

/// Numbers and texts of IOKit, Security, CommonCrypto, LocalAuthentication, Apple Events and Core Graphics.
namespace sentrel::ports {

// Power
inline constexpr const char* powerSourceStateKey = "Power Source State"; // kIOPSPowerSourceStateKey
inline constexpr const char* acPowerValue = "AC Power";                  // kIOPSACPowerValue
inline constexpr const char* preventIdleSleepAssertion = "PreventUserIdleSystemSleep";
inline constexpr std::uint32_t assertionLevelOn = 255; // kIOPMAssertionLevelOn
inline constexpr const char* rootDomainClass = "IOPMrootDomain";
inline constexpr const char* clamshellStateKey = "AppleClamshellState"; // of the root domain: 1 while the lid is closed

// HID. No public header has the vendor's page, its accelerometer, the event types and their fields.
inline constexpr const char* primaryUsagePageKey = "PrimaryUsagePage"; // kIOHIDPrimaryUsagePageKey
inline constexpr const char* primaryUsageKey = "PrimaryUsage";         // kIOHIDPrimaryUsageKey
inline constexpr const char* reportIntervalKey = "ReportInterval";     // kIOHIDReportIntervalKey
inline constexpr std::int64_t appleVendorPage = 0xFF00;
inline constexpr std::int64_t accelerometerUsage = 3;
inline constexpr std::uint32_t accelerometerEvent = 13;
inline constexpr std::uint32_t accelerometerFieldX = accelerometerEvent << 16U;
inline constexpr std::uint32_t accelerometerFieldY = accelerometerFieldX + 1;
inline constexpr std::uint32_t accelerometerFieldZ = accelerometerFieldX + 2;

// Security and CommonCrypto
inline constexpr std::int32_t securitySuccess = 0;           // errSecSuccess, kCCSuccess
inline constexpr std::int32_t keychainItemNotFound = -25300; // errSecItemNotFound
inline constexpr std::uint32_t algorithmPbkdf2 = 2;          // kCCPBKDF2
inline constexpr std::uint32_t pseudoRandomFunctionHmacSha256 = 3;

inline constexpr std::int64_t deviceOwnerAuthentication = 2; // LAPolicyDeviceOwnerAuthentication

// SMAppServiceStatus
inline constexpr std::int64_t loginItemEnabled = 1;
inline constexpr std::int64_t loginItemRequiresApproval = 2;

// Apple Events
inline constexpr std::uint32_t bundleIdentifierType = fourCharCode("bund"); // typeApplicationBundleID
inline constexpr std::uint32_t anyAppleEvent = fourCharCode("****");        // typeWildCard, as class and as identifier

// Media keys
inline constexpr std::uint32_t systemDefinedEvent = 14; // NSEventTypeSystemDefined
inline constexpr std::int16_t auxiliaryControl = 8;     // NX_SUBTYPE_AUX_CONTROL_BUTTONS
inline constexpr std::int64_t playPauseKey = 16;        // NX_KEYTYPE_PLAY, in the upper 16 bits of the data
inline constexpr std::uint32_t hidEventTap = 0;         // kCGHIDEventTap

} // namespace sentrel::ports
