#include "platform/macos/MacSystemBeep.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::macos {

void MacSystemBeep::beep()
{
    NSBeep();
}

} // namespace sentrel::macos
