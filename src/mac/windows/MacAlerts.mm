#include "mac/windows/MacAlerts.hpp"

#include "mac/foundation/FoundationText.hpp"
#include "mac/windows/ModalPanels.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::mac {

namespace {

/// Ends the modal loop of the window, if that is running.
void stopModal(NSWindow* window)
{
    if (NSApp.modalWindow != window) {
        return;
    }
    [NSApp stopModalWithCode:NSModalResponseAbort];
    // The loop notices only after an event.
    NSEvent* const event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                              location:NSZeroPoint
                                         modifierFlags:NSEventModifierFlags {}
                                             timestamp:0.0
                                          windowNumber:0
                                               context:nil
                                               subtype:0
                                                 data1:0
                                                 data2:0];
    [NSApp postEvent:event atStart:YES];
}

ModalPanel panelOf(const ports::AlertContent& content)
{
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.alertStyle = static_cast<NSAlertStyle>(content.style);
    alert.messageText = stringObject(content.messageText);
    alert.informativeText = stringObject(content.informativeText);
    return {[alert]() -> std::int64_t { return [alert runModal]; }, [alert] { stopModal(alert.window); }};
}

} // namespace

Async<std::int64_t> MacAlerts::runModal(ports::AlertContent content)
{
    return runModally(panelOf(content));
}

} // namespace sentrel::mac
