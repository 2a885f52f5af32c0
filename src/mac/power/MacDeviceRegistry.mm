#include "mac/power/MacDeviceRegistry.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>

namespace sentrel::mac {

namespace {

/// The first service of the class, which the caller releases; null when there is none.
io_service_t firstService(const std::string& serviceClass)
{
    io_iterator_t iterator = IO_OBJECT_NULL;
    // The call consumes the matching dictionary.
    const kern_return_t status =
        IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching(serviceClass.c_str()), &iterator);
    if (status != KERN_SUCCESS) {
        return IO_OBJECT_NULL;
    }
    const io_service_t service = IOIteratorNext(iterator);
    IOObjectRelease(iterator);
    return service;
}

} // namespace

std::optional<std::int64_t> MacDeviceRegistry::number(const std::string& serviceClass, const std::string& property)
{
    const io_service_t service = firstService(serviceClass);
    if (service == IO_OBJECT_NULL) {
        return std::nullopt;
    }
    const id value = CFBridgingRelease(
        IORegistryEntryCreateCFProperty(service, (__bridge CFStringRef)stringObject(property), kCFAllocatorDefault, 0));
    IOObjectRelease(service);
    // A Boolean is a number object, too.
    if (![value isKindOfClass:[NSNumber class]]) {
        return std::nullopt;
    }
    return static_cast<NSNumber*>(value).longLongValue;
}

} // namespace sentrel::mac
