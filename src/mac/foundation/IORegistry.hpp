#pragma once

#include "mac/foundation/FoundationValues.hpp"

#import <IOKit/IOKitLib.h>

namespace sentrel::mac {

/// The property of an entry of the I/O registry, which this releases; nil if either does not exist.
[[nodiscard]] inline id takeProperty(io_registry_entry_t entry, const std::string& name)
{
    if (entry == IO_OBJECT_NULL) {
        return nil;
    }
    const id value = CFBridgingRelease(
        IORegistryEntryCreateCFProperty(entry, (__bridge CFStringRef)stringObject(name), kCFAllocatorDefault, 0));
    IOObjectRelease(entry);
    return value;
}

} // namespace sentrel::mac
