#include "outputs/AlarmWatch.hpp"

#include "foundation/Quietly.hpp"

#include <algorithm>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

/// Slightly longer than the worker's period, so that a worker that falls back to beeps reports first.
constexpr Duration checkInterval = 950ms;

/// Validity of the worker's report: two of its periods and some delay.
constexpr Duration signHolds = 2s;

constexpr float beepsAtFullVolume = 3.0F;

} // namespace

AlarmWatch::AlarmWatch(Scheduler& scheduler, ports::SystemBeep& beep, std::function<void()> onBeeping)
    : beep_(beep),
      onBeeping_(std::move(onBeeping)),
      queue_(scheduler, "sentrel.alarm-watch", QualityOfService::userInteractive)
{
}

AlarmWatch::~AlarmWatch()
{
    // The timer uses the queue's executor: it is destroyed before the queue, but after the last job has ended.
    queue_.close();
    timer_.reset();
}

void AlarmWatch::begin(float alarmVolume)
{
    queue_.async([this, alarmVolume] {
        if (timer_ != nullptr) {
            return;
        }
        alarmVolume_ = alarmVolume;
        hasBeeped_ = false;
        lastCheck_ = queue_.scheduler().now();
        soundsUntil_ = lastCheck_;
        timer_ =
            std::make_unique<RepeatingTimer>(queue_.scheduler(), queue_.executor(), checkInterval, [this] { check(); });
    });
}

void AlarmWatch::noteSounding()
{
    queue_.async([this] { soundsUntil_ = queue_.scheduler().now() + signHolds; });
}

void AlarmWatch::end()
{
    queue_.async([this] { timer_.reset(); });
}

void AlarmWatch::check()
{
    const Instant now = queue_.scheduler().now();
    // While the Mac slept, the worker had no time to report either.
    const bool hasSlept = now - std::exchange(lastCheck_, now) > 2 * checkInterval;
    if (now < soundsUntil_ || hasSlept) {
        return;
    }
    beepBurst(beep_, alarmVolume_);
    if (!std::exchange(hasBeeped_, true)) {
        onBeeping_();
    }
}

void AlarmWatch::beepBurst(ports::SystemBeep& beep, float alarmVolume)
{
    const int count = static_cast<int>(std::max(alarmVolume * beepsAtFullVolume, 1.0F));
    for (int i = 0; i < count; ++i) {
        quietly([&beep] { beep.beep(); });
    }
}

} // namespace sentrel
