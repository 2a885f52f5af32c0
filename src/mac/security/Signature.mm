#include "mac/security/Signature.hpp"

#import <Security/Security.h>

namespace sentrel::mac {

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

} // namespace sentrel::mac
