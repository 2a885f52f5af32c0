#include "mac/application/MacApplicationActivation.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::mac {

void MacApplicationActivation::activate(bool ignoringOtherApplications)
{
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // the successor can't ignore others
    [NSApp activateIgnoringOtherApps:ignoringOtherApplications];
#pragma clang diagnostic pop
}

void MacApplicationActivation::setPresentationOptions(std::uint64_t options)
{
    NSApp.presentationOptions = static_cast<NSApplicationPresentationOptions>(options);
}

} // namespace sentrel::mac
