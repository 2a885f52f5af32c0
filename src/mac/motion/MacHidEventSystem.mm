#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <Foundation/Foundation.h>
#import <IOKit/hidsystem/IOHIDEventSystemClient.h>
#import <IOKit/hidsystem/IOHIDServiceClient.h>

#include <utility>

#include <dispatch/dispatch.h>

// IOKit exports these functions, but no public header declares them.
extern "C" {
typedef struct __IOHIDEvent* IOHIDEventRef;
typedef void (*IOHIDEventSystemClientEventCallback)(void* target, void* refcon, void* sender, IOHIDEventRef event);

IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef allocator);
void IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching);
void IOHIDEventSystemClientRegisterEventCallback(IOHIDEventSystemClientRef client,
                                                 IOHIDEventSystemClientEventCallback callback, void* target,
                                                 void* refcon);
void IOHIDEventSystemClientUnregisterEventCallback(IOHIDEventSystemClientRef client);
void IOHIDEventSystemClientScheduleWithDispatchQueue(IOHIDEventSystemClientRef client, dispatch_queue_t queue);
void IOHIDEventSystemClientUnscheduleFromDispatchQueue(IOHIDEventSystemClientRef client, dispatch_queue_t queue);
std::uint32_t IOHIDEventGetType(IOHIDEventRef event);
double IOHIDEventGetFloatValue(IOHIDEventRef event, std::uint32_t field);
}

namespace sentrel::mac {

namespace {

dispatch_queue_t nativeQueueOf(SerialQueue& queue)
{
    return (__bridge dispatch_queue_t)queue.nativeQueue();
}

class Event final : public ports::HidEvent {
public:
    explicit Event(IOHIDEventRef event) : event_(event) {}
    [[nodiscard]] std::uint32_t type() const override { return IOHIDEventGetType(event_); }
    [[nodiscard]] double floatValue(std::uint32_t field) const override
    {
        return IOHIDEventGetFloatValue(event_, field);
    }

private:
    const IOHIDEventRef event_;
};

class Service final : public ports::HidService {
public:
    explicit Service(id service) : service_(service) {}

    bool setProperty(const std::string& key, std::int64_t value) override
    {
        return IOHIDServiceClientSetProperty((__bridge IOHIDServiceClientRef)service_,
                                             (__bridge CFStringRef)stringObject(key),
                                             (__bridge CFTypeRef) @(value)) != 0;
    }

private:
    const id service_;
};

class Client final : public ports::HidClient {
public:
    explicit Client(id client) : object_(client) {}

    void setMatching(const std::map<std::string, std::int64_t>& matching) override
    {
        NSMutableDictionary<NSString*, NSNumber*>* const entries = [NSMutableDictionary dictionary];
        for (const auto& [key, value] : matching) {
            entries[stringObject(key)] = @(value);
        }
        IOHIDEventSystemClientSetMatching(client(), (__bridge CFDictionaryRef)entries);
    }

    [[nodiscard]] std::optional<std::vector<std::unique_ptr<ports::HidService>>> copyServices() override
    {
        const id list = CFBridgingRelease(IOHIDEventSystemClientCopyServices(client()));
        if (![list isKindOfClass:[NSArray class]]) {
            return std::nullopt;
        }
        std::vector<std::unique_ptr<ports::HidService>> services;
        for (const id service in static_cast<NSArray*>(list)) {
            services.push_back(std::make_unique<Service>(service));
        }
        return services;
    }

    void registerEventCallback(std::function<void(const ports::HidEvent*)> received) override
    {
        received_ = std::move(received);
        IOHIDEventSystemClientRegisterEventCallback(client(), &receive, this, nullptr);
    }

    // The function stays until the client ends: an event may still be on its way.
    void unregisterEventCallback() override { IOHIDEventSystemClientUnregisterEventCallback(client()); }

    void schedule(SerialQueue& queue) override
    {
        IOHIDEventSystemClientScheduleWithDispatchQueue(client(), nativeQueueOf(queue));
    }

    void unschedule(SerialQueue& queue) override
    {
        IOHIDEventSystemClientUnscheduleFromDispatchQueue(client(), nativeQueueOf(queue));
    }

private:
    static void receive(void* target, void* /*refcon*/, void* /*sender*/, IOHIDEventRef event)
    {
        auto& self = *static_cast<Client*>(target);
        if (event == nullptr) {
            self.received_(nullptr);
            return;
        }
        const Event wrapped{event};
        self.received_(&wrapped);
    }

    [[nodiscard]] IOHIDEventSystemClientRef client() const { return (__bridge IOHIDEventSystemClientRef)object_; }

    const id object_;
    std::function<void(const ports::HidEvent*)> received_;
};

/// The HID event system through IOKit.
class MacHidEventSystem final : public ports::HidEventSystem {
public:
    [[nodiscard]] std::unique_ptr<ports::HidClient> createClient() override
    {
        const id client = CFBridgingRelease(IOHIDEventSystemClientCreate(kCFAllocatorDefault));
        return client == nil ? nullptr : std::make_unique<Client>(client);
    }
};

} // namespace

std::unique_ptr<ports::HidEventSystem> makeHidEventSystem()
{
    return std::make_unique<MacHidEventSystem>();
}

} // namespace sentrel::mac
