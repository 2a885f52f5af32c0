#pragma once

#include "ports/Automation.hpp"

namespace sentrel::mac {

/// Applications as the workspace knows them.
class MacRunningApplications final : public ports::RunningApplications {
public:
    [[nodiscard]] bool isInstalled(const std::string& bundleIdentifier) override;
    [[nodiscard]] bool isRunning(const std::string& bundleIdentifier) override;
};

/// Apple Events and AppleScript. The calls block the calling thread; nothing is awaited.
class MacAutomation final : public ports::Automation {
public:
    [[nodiscard]] Async<std::optional<std::int32_t>>
    determinePermission(std::uint32_t descriptorType, std::string bundleIdentifier, std::uint32_t eventClass,
                        std::uint32_t eventId, bool askUserIfNeeded) override;
    [[nodiscard]] Async<std::optional<bool>> runScript(std::string source) override;
};

/// Events of AppKit, posted through CoreGraphics.
class MacEventPosting final : public ports::EventPosting {
public:
    bool postSystemDefined(const ports::SystemDefinedEvent& event, std::uint32_t tap) override;
};

} // namespace sentrel::mac
