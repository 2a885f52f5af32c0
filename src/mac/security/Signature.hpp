#pragma once

#import <Foundation/Foundation.h>
#import <Security/Security.h>

namespace sentrel::mac {

/// Whether this process is signed with the entitlement. An ad-hoc signature has none that a provisioning profile must
/// grant.
[[nodiscard]] inline bool isSignedWith(NSString* entitlement)
{
    const id task = CFBridgingRelease(SecTaskCreateFromSelf(kCFAllocatorDefault));
    if (task == nil) {
        return false;
    }
    const id value = CFBridgingRelease(
        SecTaskCopyValueForEntitlement((__bridge SecTaskRef)task, (__bridge CFStringRef)entitlement, nullptr));
    return value != nil;
}

} // namespace sentrel::mac
