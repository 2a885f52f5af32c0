#pragma once

#include "runtime/Async.hpp"
#include "runtime/Time.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::ports {

/// Installed and running applications (`NSWorkspace`, `NSRunningApplication`). Any thread.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// True when `URLForApplicationWithBundleIdentifier:` finds one.
    [[nodiscard]] virtual bool isInstalled(const std::string& bundleIdentifier) = 0;

    /// True when `runningApplicationsWithBundleIdentifier:` isn't empty.
    [[nodiscard]] virtual bool isRunning(const std::string& bundleIdentifier) = 0;
};

/// Apple Events consent and AppleScript. The calls may wait for the user or the other application.
class Automation {
public:
    virtual ~Automation() = default;

    /// `AECreateDesc` with the descriptor type and the bundle identifier as its data, then
    /// `AEDeterminePermissionToAutomateTarget`. Gives the `OSStatus`, or none when the descriptor can't be made. On a
    /// Mac it blocks the calling thread. Any thread.
    [[nodiscard]] virtual Async<std::optional<std::int32_t>>
    determinePermission(std::uint32_t descriptorType, std::string bundleIdentifier, std::uint32_t eventClass,
                        std::uint32_t eventId, bool askUserIfNeeded) = 0;

    /// Compiles and runs a script (`NSAppleScript`), whose Apple Events wait for their answers up to the limit, in
    /// whole seconds. Gives its result's Boolean value, or none when it can't be created or fails. On a Mac it blocks
    /// the calling thread. Main thread.
    [[nodiscard]] virtual Async<std::optional<bool>> runScript(std::string source, Duration limit) = 0;
};

/// Arguments of `otherEventWithType:...` for a system-defined event at (0, 0), with time and window number 0.
struct SystemDefinedEvent {
    std::uint32_t type = 0;
    std::uint32_t modifierFlags = 0;
    std::int16_t subtype = 0;
    std::int64_t data1 = 0;
    std::int64_t data2 = 0;
};

/// Synthesised input. Main thread.
class EventPosting {
public:
    virtual ~EventPosting() = default;

    /// Makes the event and posts it to the tap (`CGEventPost`); false when it can't be made.
    virtual bool postSystemDefined(const SystemDefinedEvent& event, std::uint32_t tap) = 0;
};

} // namespace sentrel::ports
