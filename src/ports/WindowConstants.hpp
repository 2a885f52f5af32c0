#pragma once

#include <cstdint>

/// AppKit's numbers and notifications.
namespace sentrel::ports {

// NSWindowStyleMask
inline constexpr std::uint64_t borderlessStyle = 0;
inline constexpr std::uint64_t titledStyle = 1U << 0U;
inline constexpr std::uint64_t closableStyle = 1U << 1U;
inline constexpr std::uint64_t resizableStyle = 1U << 3U;

inline constexpr std::uint64_t bufferedBacking = 2; // NSBackingStoreBuffered

// NSWindowCollectionBehavior
inline constexpr std::uint64_t joinsAllSpaces = 1U << 0U;
inline constexpr std::uint64_t stationary = 1U << 4U;
inline constexpr std::uint64_t ignoresWindowCycle = 1U << 6U;
inline constexpr std::uint64_t fullScreenAuxiliary = 1U << 8U;
inline constexpr std::uint64_t fullScreenNone = 1U << 9U;

// NSAutoresizingMaskOptions
inline constexpr std::uint64_t widthSizable = 2;
inline constexpr std::uint64_t heightSizable = 16;

// NSApplicationActivationPolicy: whether the application has a Dock icon and a menu of its own
inline constexpr std::int64_t regularActivationPolicy = 0;
inline constexpr std::int64_t accessoryActivationPolicy = 1;

// NSApplicationPresentationOptions
inline constexpr std::uint64_t defaultPresentation = 0;
inline constexpr std::uint64_t hidesDock = 1U << 1U;
inline constexpr std::uint64_t hidesMenuBar = 1U << 3U;
inline constexpr std::uint64_t disablesProcessSwitching = 1U << 5U;
inline constexpr std::uint64_t disablesForceQuit = 1U << 6U;
inline constexpr std::uint64_t disablesSessionTermination = 1U << 7U;
inline constexpr std::uint64_t disablesHidingApplication = 1U << 8U;

inline constexpr std::uint64_t warningAlertStyle = 0; // NSAlertStyleWarning

inline constexpr const char* screenParametersChanged = "NSApplicationDidChangeScreenParametersNotification";
inline constexpr const char* applicationResignedActive = "NSApplicationDidResignActiveNotification";
inline constexpr const char* screensDidSleep = "NSWorkspaceScreensDidSleepNotification";
inline constexpr const char* workspaceDidWake = "NSWorkspaceDidWakeNotification";

} // namespace sentrel::ports
