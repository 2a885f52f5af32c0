#include "mac/application/MacWallClock.hpp"

#import <CoreFoundation/CoreFoundation.h>

namespace sentrel::mac {

Date MacWallClock::now()
{
    return {CFAbsoluteTimeGetCurrent()};
}

} // namespace sentrel::mac
