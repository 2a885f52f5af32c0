#include "mac/sound/MacSystemBeep.hpp"

#import <AppKit/AppKit.h>

namespace sentrel::mac {

void MacSystemBeep::beep()
{
    NSBeep();
}

} // namespace sentrel::mac
