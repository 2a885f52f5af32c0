#include "mac/power/MacPowerAssertions.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <IOKit/pwr_mgt/IOPMLib.h>

namespace sentrel::mac {

ports::PowerAssertions::Created MacPowerAssertions::create(const std::string& type, std::uint32_t level,
                                                           const std::string& name)
{
    IOPMAssertionID id = 0;
    const IOReturn status = IOPMAssertionCreateWithName((__bridge CFStringRef)stringObject(type), level,
                                                        (__bridge CFStringRef)stringObject(name), &id);
    return {status, id};
}

std::int32_t MacPowerAssertions::release(std::uint32_t id)
{
    return IOPMAssertionRelease(id);
}

} // namespace sentrel::mac
