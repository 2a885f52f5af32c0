#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/Guarded.hpp"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

#include <memory>

namespace sentrel::mac {

namespace {

std::optional<OSStatus> permissionFor(DescType descriptorType, const std::string& bundleIdentifier,
                                      AEEventClass eventClass, AEEventID eventId, bool askUserIfNeeded)
{
    AEAddressDesc target{};
    const OSErr made =
        AECreateDesc(descriptorType, bundleIdentifier.data(), static_cast<Size>(bundleIdentifier.size()), &target);
    if (made != noErr) {
        return std::nullopt;
    }
    const OSStatus status = AEDeterminePermissionToAutomateTarget(&target, eventClass, eventId, askUserIfNeeded);
    AEDisposeDesc(&target);
    return status;
}

/// The script with a limit for each answer that it awaits; by default AppleScript waits two minutes.
std::string limited(const std::string& source, Duration limit)
{
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(limit).count();
    return "with timeout of " + std::to_string(seconds) + " seconds\n" + source + "\nend timeout";
}

std::optional<bool> resultOf(const std::string& source)
{
    NSAppleEventDescriptor* const result = guardedResult("executeAndReturnError", [&] {
        NSAppleScript* const script = [[NSAppleScript alloc] initWithSource:stringObject(source)];
        return [script executeAndReturnError:nil];
    });
    return result == nil ? std::nullopt : std::optional{result.booleanValue != 0};
}

/// Applications as the workspace knows them.
class MacRunningApplications final : public ports::RunningApplications {
public:
    [[nodiscard]] bool isInstalled(const std::string& bundleIdentifier) override
    {
        NSWorkspace* const workspace = NSWorkspace.sharedWorkspace;
        return [workspace URLForApplicationWithBundleIdentifier:stringObject(bundleIdentifier)] != nil;
    }

    [[nodiscard]] bool isRunning(const std::string& bundleIdentifier) override
    {
        NSString* const identifier = stringObject(bundleIdentifier);
        return [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].count > 0;
    }
};

/// Apple Events and AppleScript.
class MacAutomation final : public ports::Automation {
public:
    [[nodiscard]] Async<std::optional<std::int32_t>>
    determinePermission(std::uint32_t descriptorType, std::string bundleIdentifier, std::uint32_t eventClass,
                        std::uint32_t eventId, bool askUserIfNeeded) override
    {
        co_return permissionFor(descriptorType, bundleIdentifier, eventClass, eventId, askUserIfNeeded);
    }

    [[nodiscard]] Async<std::optional<bool>> runScript(std::string source, Duration limit) override
    {
        co_return resultOf(limited(source, limit));
    }
};

/// Events of AppKit, posted through CoreGraphics.
class MacEventPosting final : public ports::EventPosting {
public:
    bool postSystemDefined(const ports::SystemDefinedEvent& event, std::uint32_t tap) override
    {
        NSEvent* const made = [NSEvent otherEventWithType:static_cast<NSEventType>(event.type)
                                                 location:NSMakePoint(0.0, 0.0)
                                            modifierFlags:event.modifierFlags
                                                timestamp:0.0
                                             windowNumber:0
                                                  context:nil
                                                  subtype:event.subtype
                                                    data1:static_cast<NSInteger>(event.data1)
                                                    data2:static_cast<NSInteger>(event.data2)];
        const CGEventRef native = made.CGEvent;
        if (native == nullptr) {
            return false;
        }
        CGEventPost(static_cast<CGEventTapLocation>(tap), native);
        return true;
    }
};

} // namespace

std::unique_ptr<ports::RunningApplications> makeRunningApplications()
{
    return std::make_unique<MacRunningApplications>();
}

std::unique_ptr<ports::Automation> makeAutomation()
{
    return std::make_unique<MacAutomation>();
}

std::unique_ptr<ports::EventPosting> makeEventPosting()
{
    return std::make_unique<MacEventPosting>();
}

} // namespace sentrel::mac
