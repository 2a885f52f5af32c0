#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/IORegistry.hpp"

#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/ps/IOPowerSources.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

#include <utility>

namespace sentrel::mac {

namespace {

class Snapshot final : public ports::PowerSourcesSnapshot {
public:
    explicit Snapshot(id info)
        : info_(info), list_(as<NSArray>(CFBridgingRelease(IOPSCopyPowerSourcesList((__bridge CFTypeRef)info))))
    {
    }

    [[nodiscard]] std::optional<std::size_t> count() const override
    {
        return list_ == nil ? std::nullopt : std::optional<std::size_t>{list_.count};
    }

    [[nodiscard]] std::optional<std::string> text(std::size_t source, std::string_view key) const override
    {
        const CFDictionaryRef description =
            IOPSGetPowerSourceDescription((__bridge CFTypeRef)info_, (__bridge CFTypeRef)list_[source]);
        NSDictionary* const entries = as<NSDictionary>((__bridge id)description);
        return optionalText(as<NSString>(entries[stringObject(key)]));
    }

private:
    const id info_;
    NSArray* const list_;
};

/// A source in the main run loop. Made, called and destroyed on the main thread.
class ChangeRegistration final : public ports::Registration {
public:
    explicit ChangeRegistration(std::function<void()> changed)
        : changed_(std::move(changed)), source_(IOPSNotificationCreateRunLoopSource(&notify, this))
    {
        if (source_ != nullptr) {
            CFRunLoopAddSource(CFRunLoopGetMain(), source_, kCFRunLoopDefaultMode);
        }
    }

    ~ChangeRegistration() override
    {
        if (source_ != nullptr) {
            CFRunLoopRemoveSource(CFRunLoopGetMain(), source_, kCFRunLoopDefaultMode);
            CFRelease(source_);
        }
    }

    [[nodiscard]] bool isMade() const { return source_ != nullptr; }

private:
    static void notify(void* context)
    {
        // A copy, because the callback may end the registration.
        const auto changed = static_cast<ChangeRegistration*>(context)->changed_;
        changed();
    }

    const std::function<void()> changed_;
    const CFRunLoopSourceRef source_;
};

/// The power sources through IOKit.
class MacPowerSources final : public ports::PowerSources {
public:
    [[nodiscard]] std::unique_ptr<ports::PowerSourcesSnapshot> copySnapshot() override
    {
        const id info = CFBridgingRelease(IOPSCopyPowerSourcesInfo());
        return info == nil ? nullptr : std::make_unique<Snapshot>(info);
    }

    [[nodiscard]] ports::RegistrationPtr observeChanges(std::function<void()> changed) override
    {
        auto registration = std::make_unique<ChangeRegistration>(std::move(changed));
        return registration->isMade() ? std::move(registration) : nullptr;
    }
};

/// Power-management assertions through IOKit.
class MacPowerAssertions final : public ports::PowerAssertions {
public:
    [[nodiscard]] Created create(const std::string& type, std::uint32_t level, const std::string& name) override
    {
        IOPMAssertionID id = 0;
        const IOReturn status = IOPMAssertionCreateWithName((__bridge CFStringRef)stringObject(type), level,
                                                            (__bridge CFStringRef)stringObject(name), &id);
        return {status, id};
    }

    std::int32_t release(std::uint32_t id) override { return IOPMAssertionRelease(id); }
};

/// The first service of the class, which the caller releases; none: `IO_OBJECT_NULL`.
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

/// The I/O registry.
class MacDeviceRegistry final : public ports::DeviceRegistry {
public:
    [[nodiscard]] std::optional<std::int64_t> number(const std::string& serviceClass,
                                                     const std::string& property) override
    {
        // A Boolean is a number object, too.
        NSNumber* const value = as<NSNumber>(takeProperty(firstService(serviceClass), property));
        return value == nil ? std::nullopt : std::optional<std::int64_t>{value.longLongValue};
    }
};

} // namespace

std::unique_ptr<ports::PowerSources> makePowerSources()
{
    return std::make_unique<MacPowerSources>();
}

std::unique_ptr<ports::PowerAssertions> makePowerAssertions()
{
    return std::make_unique<MacPowerAssertions>();
}

std::unique_ptr<ports::DeviceRegistry> makeDeviceRegistry()
{
    return std::make_unique<MacDeviceRegistry>();
}

} // namespace sentrel::mac
