#include "mac/music/MacAutomation.hpp"

#include "mac/foundation/FoundationText.hpp"
#include "mac/foundation/Guarded.hpp"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

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

std::optional<bool> resultOf(const std::string& source)
{
    NSAppleEventDescriptor* result = nil;
    guarded("executeAndReturnError", [&] {
        NSAppleScript* const script = [[NSAppleScript alloc] initWithSource:stringObject(source)];
        result = [script executeAndReturnError:nil];
    });
    if (result == nil) {
        return std::nullopt;
    }
    return result.booleanValue != 0;
}

} // namespace

bool MacRunningApplications::isInstalled(const std::string& bundleIdentifier)
{
    NSWorkspace* const workspace = NSWorkspace.sharedWorkspace;
    return [workspace URLForApplicationWithBundleIdentifier:stringObject(bundleIdentifier)] != nil;
}

bool MacRunningApplications::isRunning(const std::string& bundleIdentifier)
{
    NSString* const identifier = stringObject(bundleIdentifier);
    return [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].count > 0;
}

Async<std::optional<std::int32_t>> MacAutomation::determinePermission(std::uint32_t descriptorType,
                                                                      std::string bundleIdentifier,
                                                                      std::uint32_t eventClass, std::uint32_t eventId,
                                                                      bool askUserIfNeeded)
{
    co_return permissionFor(descriptorType, bundleIdentifier, eventClass, eventId, askUserIfNeeded);
}

Async<std::optional<bool>> MacAutomation::runScript(std::string source)
{
    co_return resultOf(source);
}

bool MacEventPosting::postSystemDefined(const ports::SystemDefinedEvent& event, std::uint32_t tap)
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

} // namespace sentrel::mac
