#include "platform/macos/MacWallClock.hpp"

#import <CoreFoundation/CoreFoundation.h>

namespace sentrel::macos {

Date MacWallClock::now()
{
    return {CFAbsoluteTimeGetCurrent()};
}

} // namespace sentrel::macos
