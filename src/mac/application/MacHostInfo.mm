#include "mac/application/MacHostInfo.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>

#include <cstddef>
#include <cstdint>

#include <sys/sysctl.h>

namespace sentrel::mac {

namespace {

std::optional<std::string> optionalText(NSString* text)
{
    if (text == nil) {
        return std::nullopt;
    }
    return textOf(text);
}

} // namespace

std::optional<std::string> MacHostInfo::systemControlText(const std::string& name)
{
    std::size_t size = 0;
    if (sysctlbyname(name.c_str(), nullptr, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    std::string text(size, '\0');
    if (sysctlbyname(name.c_str(), text.data(), &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    text.resize(size);
    return text.c_str(); // without the terminator, which the size counts
}

std::optional<Bytes> MacHostInfo::registryData(const std::string& path, const std::string& property)
{
    const io_registry_entry_t entry =
        IORegistryEntryCopyFromPath(kIOMainPortDefault, (__bridge CFStringRef)stringObject(path));
    if (entry == IO_OBJECT_NULL) {
        return std::nullopt;
    }
    const id value = CFBridgingRelease(
        IORegistryEntryCreateCFProperty(entry, (__bridge CFStringRef)stringObject(property), kCFAllocatorDefault, 0));
    IOObjectRelease(entry);
    if (![value isKindOfClass:[NSData class]]) {
        return std::nullopt;
    }
    NSData* const data = value;
    const auto* const begin = static_cast<const std::uint8_t*>(data.bytes);
    return Bytes(begin, begin + data.length);
}

std::optional<std::string> MacHostInfo::localizedName()
{
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // the only source of the computer's name
    return optionalText(NSHost.currentHost.localizedName);
#pragma clang diagnostic pop
}

std::optional<std::string> MacHostInfo::bundleIdentifier()
{
    return optionalText(NSBundle.mainBundle.bundleIdentifier);
}

std::optional<std::filesystem::path> MacHostInfo::applicationSupportDirectory()
{
    NSArray<NSURL*>* const urls = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                                       inDomains:NSUserDomainMask];
    NSURL* const first = urls.firstObject;
    if (first == nil) {
        return std::nullopt;
    }
    return pathOf(first);
}

std::filesystem::path MacHostInfo::temporaryDirectory()
{
    return pathOf(NSFileManager.defaultManager.temporaryDirectory);
}

} // namespace sentrel::mac
