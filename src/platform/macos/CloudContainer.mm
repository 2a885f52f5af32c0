#include "platform/macos/CloudContainer.hpp"

#include "platform/CloudError.hpp"
#include "platform/macos/FoundationText.hpp"

#import <Security/Security.h>

namespace sentrel::macos {

namespace {

bool isSignedForCloud()
{
    const id task = CFBridgingRelease(SecTaskCreateFromSelf(kCFAllocatorDefault));
    if (task == nil) {
        return false;
    }
    const id services = CFBridgingRelease(SecTaskCopyValueForEntitlement(
        (__bridge SecTaskRef)task, CFSTR("com.apple.developer.icloud-services"), nullptr));
    return services != nil;
}

} // namespace

CKContainer* CloudContainer::open()
{
    if (container_ == nil) {
        if (!isSignedForCloud()) {
            throw platform::CloudError{textOf(CKErrorDomain), CKErrorMissingEntitlement,
                                       "this build is not signed for iCloud"};
        }
        container_ = [CKContainer containerWithIdentifier:stringObject(identifier_)];
    }
    return container_;
}

} // namespace sentrel::macos
