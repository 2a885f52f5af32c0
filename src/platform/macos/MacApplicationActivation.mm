#include "platform/macos/MacApplicationActivation.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::macos {

void MacApplicationActivation::activate(bool ignoringOtherApplications)
{
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // its successor can't ignore the others
    [NSApp activateIgnoringOtherApps:ignoringOtherApplications];
#pragma clang diagnostic pop
}

} // namespace sentrel::macos
