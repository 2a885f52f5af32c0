#pragma once

#include "ports/HidEventSystem.hpp"
#include "runtime/SerialQueue.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace sentrel {

/// A client of the HID event system that matches devices by usage; null when none can be created.
[[nodiscard]] std::unique_ptr<ports::HidClient> makeMatchingClient(ports::HidEventSystem& events,
                                                                   std::int64_t usagePage, std::int64_t usage);

/// Subscribes to an accelerometer and hands on its raw samples. Started, stopped and destroyed on one thread; samples
/// come on the handler's own queue.
class AccelerometerEventHandler {
public:
    /// Takes x, y and z as the sensor gives them. Called on the handler's queue.
    using SampleCallback = std::function<void(double x, double y, double z)>;

    AccelerometerEventHandler(Scheduler& scheduler, ports::HidEventSystem& events, SampleCallback onSample);

    /// Stops; when it returns, no callback is running and none comes later.
    ~AccelerometerEventHandler();
    AccelerometerEventHandler(const AccelerometerEventHandler&) = delete;

    /// Subscribes to the devices of a usage, with a report interval in microseconds. False when there is no such device
    /// or no HID client.
    [[nodiscard]] bool start(std::int64_t usagePage, std::int64_t usage, std::int64_t reportInterval);

    /// Ends the subscription; when it returns, no callback is running and none comes later. Safe when not started.
    void stop();

private:
    void receive(const ports::HidEvent* event);
    [[nodiscard]] bool isRunning();
    void setRunning(bool isRunning);
    std::unique_ptr<ports::HidClient> detachClient();

    ports::HidEventSystem& events_;
    const SampleCallback onSample_;
    std::unique_ptr<ports::HidClient> client_;
    std::mutex stateLock_;
    bool isRunning_ = false;
    SerialQueue queue_;
};

} // namespace sentrel
