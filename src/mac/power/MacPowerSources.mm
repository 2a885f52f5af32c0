#include "mac/power/MacPowerSources.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <Foundation/Foundation.h>
#import <IOKit/ps/IOPowerSources.h>

#include <utility>

namespace sentrel::mac {

namespace {

/// The value if it is an object of this class, otherwise nil.
template <class Class> Class* as(id value)
{
    return [value isKindOfClass:[Class class]] ? static_cast<Class*>(value) : nil;
}

class Snapshot final : public ports::PowerSourcesSnapshot {
public:
    explicit Snapshot(id info)
        : info_(info), list_(as<NSArray>(CFBridgingRelease(IOPSCopyPowerSourcesList((__bridge CFTypeRef)info))))
    {
    }

    [[nodiscard]] std::optional<std::size_t> count() const override
    {
        if (list_ == nil) {
            return std::nullopt;
        }
        return list_.count;
    }

    [[nodiscard]] std::optional<std::string> text(std::size_t source, std::string_view key) const override
    {
        const CFDictionaryRef description =
            IOPSGetPowerSourceDescription((__bridge CFTypeRef)info_, (__bridge CFTypeRef)list_[source]);
        NSDictionary* const entries = as<NSDictionary>((__bridge id)description);
        NSString* const value = as<NSString>(entries[stringObject(key)]);
        if (value == nil) {
            return std::nullopt;
        }
        return textOf(value);
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

} // namespace

std::unique_ptr<ports::PowerSourcesSnapshot> MacPowerSources::copySnapshot()
{
    const id info = CFBridgingRelease(IOPSCopyPowerSourcesInfo());
    return info == nil ? nullptr : std::make_unique<Snapshot>(info);
}

ports::RegistrationPtr MacPowerSources::observeChanges(std::function<void()> changed)
{
    auto registration = std::make_unique<ChangeRegistration>(std::move(changed));
    return registration->isMade() ? std::move(registration) : nullptr;
}

} // namespace sentrel::mac
