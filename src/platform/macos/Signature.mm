#include "platform/macos/Signature.hpp"

#import <Security/Security.h>

namespace sentrel::macos {

bool isSignedWith(NSString* entitlement)
{
    const id task = CFBridgingRelease(SecTaskCreateFromSelf(kCFAllocatorDefault));
    if (task == nil) {
        return false;
    }
    const id value = CFBridgingRelease(
        SecTaskCopyValueForEntitlement((__bridge SecTaskRef)task, (__bridge CFStringRef)entitlement, nullptr));
    return value != nil;
}

} // namespace sentrel::macos
