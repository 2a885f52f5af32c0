#include "platform/macos/MacPlatform.hpp"

#import <AppKit/AppKit.h>

int main()
{
    sentrel::macos::MacPlatform mac;
    @autoreleasepool {
        NSApplication* const application = NSApplication.sharedApplication;
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        [application run];
    }
}
