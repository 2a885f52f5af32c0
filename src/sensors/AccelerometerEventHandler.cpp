#include "sensors/AccelerometerEventHandler.hpp"

#include "foundation/Quietly.hpp"
#include "ports/SystemConstants.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr const char* queueLabel = "pelma.Sentrel.motion.accelerometer";

} // namespace

std::unique_ptr<ports::HidClient> makeMatchingClient(ports::HidEventSystem& events, std::int64_t usagePage,
                                                     std::int64_t usage)
{
    auto client = events.createClient();
    if (client != nullptr) {
        client->setMatching({{ports::primaryUsagePageKey, usagePage}, {ports::primaryUsageKey, usage}});
    }
    return client;
}

AccelerometerEventHandler::AccelerometerEventHandler(Scheduler& scheduler, ports::HidEventSystem& events,
                                                     SampleCallback onSample)
    : events_(events), onSample_(std::move(onSample)), queue_(scheduler, queueLabel, QualityOfService::standard)
{
}

AccelerometerEventHandler::~AccelerometerEventHandler()
{
    // The queue is closed, not drained: closing waits for a callback in progress, but needs no further turn in a
    // process whose queues may have stopped. The client lives until then.
    const auto client = detachClient();
    queue_.close();
}

bool AccelerometerEventHandler::start(std::int64_t usagePage, std::int64_t usage, std::int64_t reportInterval)
{
    auto client = makeMatchingClient(events_, usagePage, usage);
    if (client == nullptr) {
        return false;
    }
    const auto services = client->copyServices();
    if (!services || services->empty()) {
        return false;
    }
    for (const auto& service : *services) {
        service->setProperty(ports::reportIntervalKey, reportInterval);
    }
    setRunning(true);
    client_ = std::move(client);
    client_->registerEventCallback([this](const ports::HidEvent* event) { receive(event); });
    client_->schedule(queue_);
    return true;
}

void AccelerometerEventHandler::stop()
{
    if (const auto client = detachClient()) {
        // An empty job runs only after a callback in progress has finished.
        queue_.sync([] {});
    }
}

std::unique_ptr<ports::HidClient> AccelerometerEventHandler::detachClient()
{
    setRunning(false);
    if (client_ != nullptr) {
        // Also called by the destructor, which must not throw.
        quietly([this] { client_->unschedule(queue_); });
        quietly([this] { client_->unregisterEventCallback(); });
    }
    return std::move(client_);
}

void AccelerometerEventHandler::receive(const ports::HidEvent* event)
{
    if (event == nullptr || !isRunning() || event->type() != ports::accelerometerEvent) {
        return;
    }
    onSample_(event->floatValue(ports::accelerometerFieldX), event->floatValue(ports::accelerometerFieldY),
              event->floatValue(ports::accelerometerFieldZ));
}

bool AccelerometerEventHandler::isRunning()
{
    const std::lock_guard guard{stateLock_};
    return isRunning_;
}

void AccelerometerEventHandler::setRunning(bool isRunning)
{
    const std::lock_guard guard{stateLock_};
    isRunning_ = isRunning;
}

} // namespace sentrel
