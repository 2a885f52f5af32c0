#pragma once

#include "runtime/SerialQueue.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::ports {

/// One event of a HID service; valid during its callback only.
class HidEvent {
public:
    virtual ~HidEvent() = default;
    [[nodiscard]] virtual std::uint32_t type() const = 0;                   ///< `IOHIDEventGetType`
    [[nodiscard]] virtual double floatValue(std::uint32_t field) const = 0; ///< `IOHIDEventGetFloatValue`
};

/// A device that a client matched.
class HidService {
public:
    virtual ~HidService() = default;

    /// `IOHIDServiceClientSetProperty` with an integer; false when the service refuses it.
    virtual bool setProperty(const std::string& key, std::int64_t value) = 0;
};

/// A client of the HID event system. Used by one thread at a time; its callback comes on the scheduled queue.
class HidClient {
public:
    virtual ~HidClient() = default;

    /// `IOHIDEventSystemClientSetMatching` with integer values.
    virtual void setMatching(const std::map<std::string, std::int64_t>& matching) = 0;

    /// `IOHIDEventSystemClientCopyServices`; none when the result is missing or not an array.
    [[nodiscard]] virtual std::optional<std::vector<std::unique_ptr<HidService>>> copyServices() = 0;

    /// `IOHIDEventSystemClientRegisterEventCallback`. The event is null when the system passes none.
    virtual void registerEventCallback(std::function<void(const HidEvent*)> received) = 0;
    virtual void unregisterEventCallback() = 0;

    /// Events are delivered on this queue from now on (`IOHIDEventSystemClientScheduleWithDispatchQueue`). An event
    /// that is on its way when the client is unscheduled may still arrive until the queue has been drained.
    virtual void schedule(SerialQueue& queue) = 0;
    virtual void unschedule(SerialQueue& queue) = 0;
};

/// The HID event system. Any thread.
class HidEventSystem {
public:
    virtual ~HidEventSystem() = default;

    /// `IOHIDEventSystemClientCreate`; null when it can't be created.
    [[nodiscard]] virtual std::unique_ptr<HidClient> createClient() = 0;
};

} // namespace sentrel::ports
