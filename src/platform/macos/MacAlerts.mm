#include "platform/macos/MacAlerts.hpp"

#include "platform/macos/FoundationText.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::macos {

Async<std::int64_t> MacAlerts::runModal(platform::AlertContent content)
{
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.alertStyle = static_cast<NSAlertStyle>(content.style);
    alert.messageText = stringObject(content.messageText);
    alert.informativeText = stringObject(content.informativeText);
    const NSModalResponse response = [alert runModal];
    co_return response;
}

} // namespace sentrel::macos
