#include "simulation/mac/motion/SimulatedAccelerometer.hpp"

#include "simulation/Events.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace sentrel::simulation {

namespace {

// The accelerometer's HID usage, and the type of its events (`kIOHIDEventTypeAccelerometer`).
constexpr std::int64_t usagePage = 0xFF00;
constexpr std::int64_t usage = 3;
constexpr std::uint32_t accelerometerEvent = 13;

/// Sensors of this kind report at 1 kHz at most.
constexpr Duration shortestInterval = std::chrono::milliseconds{1};

/// In g; far beyond every threshold.
constexpr Acceleration violentMovement{4.0, -4.0, 4.0};

bool matchesDevice(const std::map<std::string, std::int64_t>& matching)
{
    return std::ranges::all_of(matching, [](const auto& wanted) {
        const auto& [key, value] = wanted;
        return (key == "PrimaryUsagePage" && value == usagePage) || (key == "PrimaryUsage" && value == usage);
    });
}

} // namespace

/// The sensor as a client holds it.
class SimulatedAccelerometer::Service final : public ports::HidService {
public:
    explicit Service(SimulatedAccelerometer& device) : device_(device) {}

    bool setProperty(const std::string& key, std::int64_t value) override
    {
        constexpr std::int64_t longest = 3'600'000'000; // microseconds: an hour
        if (key != "ReportInterval" || value <= 0 || value > longest || device_.faults_.strikes("report-interval")) {
            return false;
        }
        device_.setReportInterval(std::max<Duration>(std::chrono::microseconds{value}, shortestInterval));
        return true;
    }

private:
    SimulatedAccelerometer& device_;
};

class SimulatedAccelerometer::Client final : public ports::HidClient {
public:
    explicit Client(SimulatedAccelerometer& device) : device_(device) {}
    ~Client() override { leave(); }

    void setMatching(const std::map<std::string, std::int64_t>& matching) override
    {
        device_.faults_.call("setMatching");
        const std::lock_guard guard{device_.mutex_};
        isMatching_ = matchesDevice(matching);
    }

    [[nodiscard]] std::optional<std::vector<std::unique_ptr<ports::HidService>>> copyServices() override
    {
        device_.faults_.call("copyServices");
        if (device_.faults_.strikes("services")) {
            return std::nullopt;
        }
        std::vector<std::unique_ptr<ports::HidService>> services;
        const std::lock_guard guard{device_.mutex_};
        if (isMatching_ && device_.isPresent_) {
            services.push_back(std::make_unique<Service>(device_));
        }
        return services;
    }

    void registerEventCallback(std::function<void(const ports::HidEvent*)> received) override
    {
        device_.faults_.call("registerEventCallback");
        channel_->setCallback(std::move(received));
    }
    void unregisterEventCallback() override
    {
        device_.faults_.call("unregisterEventCallback");
        channel_->clearCallback();
    }

    void schedule(SerialQueue& queue) override
    {
        device_.faults_.call("schedule");
        channel_->schedule(queue);
        device_.attach(*this);
    }

    void unschedule(SerialQueue& /*queue*/) override
    {
        device_.faults_.call("unschedule");
        if (device_.faults_.strikes("late-event")) {
            channel_->sendStray({accelerometerEvent, violentMovement, false});
        }
        leave();
    }

    /// Called under the device's lock.
    [[nodiscard]] bool isMatching() const { return isMatching_; }
    void send(const HidMessage& message) { HidEventChannel::send(channel_, message); }

private:
    void leave()
    {
        device_.detach(*this);
        channel_->unschedule();
    }

    SimulatedAccelerometer& device_;
    bool isMatching_ = true; // without matching a client gets every device
    std::shared_ptr<HidEventChannel> channel_ = std::make_shared<HidEventChannel>();
};

SimulatedAccelerometer::SimulatedAccelerometer(Scheduler& hardware, ports::Journal& journal, std::uint64_t seed)
    : scheduler_(hardware),
      journal_(journal),
      timeline_(seed),
      executor_(hardware.makeSerialExecutor("accelerometer", QualityOfService::userInteractive))
{
}

SimulatedAccelerometer::~SimulatedAccelerometer()
{
    change([this](Instant) { isEnding_ = true; });
    executor_->stop();
}

std::unique_ptr<ports::HidClient> SimulatedAccelerometer::createClient()
{
    faults_.call("createClient");
    return faults_.strikes("client") ? nullptr : std::make_unique<Client>(*this);
}

void SimulatedAccelerometer::setPresent(bool isPresent)
{
    change([&](Instant) { isPresent_ = isPresent; });
}

bool SimulatedAccelerometer::isPresent() const
{
    const std::lock_guard guard{mutex_};
    return isPresent_;
}

void SimulatedAccelerometer::sample(const Acceleration& acceleration)
{
    journal_.note(events::AccelerometerSample{acceleration.x, acceleration.y, acceleration.z});
    send({accelerometerEvent, acceleration, false});
}

void SimulatedAccelerometer::sendEvent(std::uint32_t type, const Acceleration& values)
{
    send({type, values, false});
}

void SimulatedAccelerometer::sendNullEvent()
{
    HidMessage message;
    message.isNull = true;
    send(message);
}

void SimulatedAccelerometer::play(MotionRecording recording)
{
    journal_.note(events::AccelerometerRecording{static_cast<std::int64_t>(recording.samples().size()),
                                                 toSeconds(recording.length())});
    change([&](Instant now) { timeline_.play(std::move(recording), now); });
}

void SimulatedAccelerometer::setResting(bool isResting)
{
    change([&](Instant now) { timeline_.setResting(isResting, now); });
}

bool SimulatedAccelerometer::isResting() const
{
    const std::lock_guard guard{mutex_};
    return timeline_.isResting();
}

void SimulatedAccelerometer::setAsleep(bool isAsleep)
{
    change([&](Instant) { isAsleep_ = isAsleep; });
}

void SimulatedAccelerometer::setReportInterval(Duration interval)
{
    change([&](Instant now) { timeline_.setInterval(interval, now); });
}

void SimulatedAccelerometer::attach(Client& client)
{
    change([&](Instant) {
        if (std::ranges::find(scheduled_, &client) == scheduled_.end()) {
            scheduled_.push_back(&client);
        }
    });
}

void SimulatedAccelerometer::detach(Client& client)
{
    change([&](Instant) { std::erase(scheduled_, &client); });
}

void SimulatedAccelerometer::send(const HidMessage& message)
{
    const std::lock_guard guard{mutex_};
    if (isWorking()) {
        broadcast(message);
    }
}

void SimulatedAccelerometer::tick()
{
    const std::lock_guard guard{mutex_};
    const Instant now = scheduler_.now();
    while (isWorking()) {
        const auto due = timeline_.next();
        if (!due) {
            return;
        }
        if (*due > now) {
            scheduler_.cancelTimer(ticker_); // a change since this job was posted may have started it
            scheduler_.startTimer(ticker_, *due);
            return;
        }
        broadcast({accelerometerEvent, timeline_.take(), false});
    }
}

/// Applies a change now and restarts the timer for the next sample. Timer and job are withdrawn first: neither may be
/// posted twice.
template <class Change> void SimulatedAccelerometer::change(Change apply)
{
    const std::lock_guard guard{mutex_};
    scheduler_.cancelTimer(ticker_);
    executor_->withdraw(ticker_);
    const Instant now = scheduler_.now();
    const bool wasWorking = isWorking();
    apply(now);
    if (!isWorking()) {
        return;
    }
    if (!wasWorking) {
        timeline_.skipTo(now);
    }
    if (const auto next = timeline_.next()) {
        scheduler_.startTimer(ticker_, *next);
    }
}

bool SimulatedAccelerometer::isWorking() const
{
    return isPresent_ && !isAsleep_ && !isEnding_ && !scheduled_.empty();
}

void SimulatedAccelerometer::broadcast(const HidMessage& message)
{
    if (delivered_ && message.type == accelerometerEvent && !message.isNull) {
        delivered_(message.acceleration);
    }
    for (Client* client : scheduled_) {
        if (client->isMatching()) {
            client->send(message);
        }
    }
}

} // namespace sentrel::simulation
