#include "mac/Adapters.hpp"

#include "mac/foundation/IORegistry.hpp"

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstddef>

#include <sys/sysctl.h>

namespace sentrel::mac {

namespace {

/// Facts from the kernel, from the I/O registry and from Foundation.
class MacHostInfo final : public ports::HostInfo {
public:
    [[nodiscard]] std::optional<std::string> systemControlText(const std::string& name) override
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

    [[nodiscard]] std::optional<Bytes> registryData(const std::string& path, const std::string& property) override
    {
        const io_registry_entry_t entry =
            IORegistryEntryCopyFromPath(kIOMainPortDefault, (__bridge CFStringRef)stringObject(path));
        NSData* const data = as<NSData>(takeProperty(entry, property));
        return data == nil ? std::nullopt : std::optional{bytesOf(data)};
    }

    [[nodiscard]] std::optional<std::string> localizedName() override
    {
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // the only source of the computer's name
        return optionalText(NSHost.currentHost.localizedName);
#pragma clang diagnostic pop
    }

    [[nodiscard]] std::optional<std::string> bundleIdentifier() override
    {
        return optionalText(NSBundle.mainBundle.bundleIdentifier);
    }

    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override
    {
        NSArray<NSURL*>* const urls = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                                           inDomains:NSUserDomainMask];
        NSURL* const first = urls.firstObject;
        return first == nil ? std::nullopt : std::optional{pathOf(first)};
    }

    [[nodiscard]] std::filesystem::path temporaryDirectory() override
    {
        return pathOf(NSFileManager.defaultManager.temporaryDirectory);
    }
};

/// The system's date and time.
class MacWallClock final : public ports::WallClock {
public:
    [[nodiscard]] Date now() override { return {CFAbsoluteTimeGetCurrent()}; }
};

} // namespace

std::unique_ptr<ports::HostInfo> makeHostInfo()
{
    return std::make_unique<MacHostInfo>();
}

std::unique_ptr<ports::WallClock> makeWallClock()
{
    return std::make_unique<MacWallClock>();
}

} // namespace sentrel::mac
