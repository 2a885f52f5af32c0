#include "simulation/mac/display/SimulatedAlerts.hpp"

#include "runtime/Scheduler.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::int64_t firstButton = 1000; // NSAlertFirstButtonReturn

} // namespace

/// An open panel, which closes on every way out of `runModal`.
class SimulatedAlerts::Opened {
public:
    Opened(SimulatedAlerts& alerts, ports::AlertContent content) : alerts_(alerts)
    {
        panel_->alert = {std::move(content), alerts.activation_.isActive()};
        const std::lock_guard guard{alerts_.mutex_};
        alerts_.shown_.push_back(panel_->alert);
        alerts_.open_.push_back(panel_);
    }
    ~Opened()
    {
        const std::lock_guard guard{alerts_.mutex_};
        std::erase(alerts_.open_, panel_);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    [[nodiscard]] Semaphore& closed() { return panel_->closed; }

private:
    SimulatedAlerts& alerts_;
    std::shared_ptr<Panel> panel_ = std::make_shared<Panel>();
};

SimulatedAlerts::SimulatedAlerts(Scheduler& scheduler, const SimulatedApplicationActivation& activation)
    : scheduler_(scheduler), activation_(activation)
{
}

Async<std::int64_t> SimulatedAlerts::runModal(ports::AlertContent content)
{
    co_await faults_.awaitedCall("runModal");
    Opened panel{*this, std::move(content)};
    std::optional<Duration> readingTime;
    {
        const std::lock_guard guard{mutex_};
        readingTime = readingTime_;
    }
    if (readingTime) {
        co_await panel.closed().waitUntil(scheduler_.now() + *readingTime);
    } else {
        co_await panel.closed().wait();
    }
    co_return firstButton;
}

void SimulatedAlerts::setReadingTime(std::optional<Duration> time)
{
    const std::lock_guard guard{mutex_};
    readingTime_ = time;
}

bool SimulatedAlerts::close()
{
    const std::lock_guard guard{mutex_};
    if (open_.empty()) {
        return false;
    }
    open_.back()->closed.signal();
    open_.pop_back();
    return true;
}

std::optional<SimulatedAlerts::Shown> SimulatedAlerts::open() const
{
    const std::lock_guard guard{mutex_};
    return open_.empty() ? std::nullopt : std::optional{open_.back()->alert};
}

std::vector<SimulatedAlerts::Shown> SimulatedAlerts::shown() const
{
    const std::lock_guard guard{mutex_};
    return shown_;
}

} // namespace sentrel::simulation
