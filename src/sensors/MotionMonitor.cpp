#include "sensors/MotionMonitor.hpp"

#include "foundation/Quietly.hpp"
#include "ports/SystemConstants.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/WeakCall.hpp"

namespace sentrel {

namespace {

using ports::accelerometerUsage;
using ports::appleVendorPage;

constexpr std::int64_t reportInterval = 20'000;   // microseconds: 50 samples a second
constexpr double thresholdBeforeFirstStart = 0.5; // g

} // namespace

MotionMonitor::MotionMonitor(MainActor mainActor, ports::HidEventSystem& events, ports::WallClock& wallClock)
    : mainActor_(mainActor), events_(events), wallClock_(wallClock), detector_(thresholdBeforeFirstStart)
{
}

bool MotionMonitor::probeAvailability(ports::HidEventSystem& events)
{
    const auto client = makeMatchingClient(events, appleVendorPage, accelerometerUsage);
    if (client == nullptr) {
        return false;
    }
    const auto services = client->copyServices();
    return services && !services->empty();
}

bool MotionMonitor::refreshAvailability()
{
    assertOnMainActor(mainActor_);
    isAccelerometerAvailable_ = probeAvailability(events_);
    return isAccelerometerAvailable_;
}

void MotionMonitor::start(double sensitivity)
{
    assertOnMainActor(mainActor_);
    stop();
    detector_ = MotionDetector{MotionDetector::thresholdFor(sensitivity)};
    if (!quietly([this] { return refreshAvailability(); })) {
        isAccelerometerAvailable_ = false;
        return;
    }
    auto onSample = weakCall(mainActor_, anchor_.weak(), &MotionMonitor::process);
    auto handler = std::make_unique<AccelerometerEventHandler>(mainActor_.scheduler(), events_, std::move(onSample));
    if (!quietly([&] { return handler->start(appleVendorPage, accelerometerUsage, reportInterval); })) {
        isAccelerometerAvailable_ = false;
        return;
    }
    handler_ = std::move(handler);
}

void MotionMonitor::stop()
{
    assertOnMainActor(mainActor_);
    if (handler_ != nullptr) {
        handler_->stop();
        handler_.reset();
    }
    detector_.forgetBaseline();
}

void MotionMonitor::process(double x, double y, double z)
{
    assertOnMainActor(mainActor_);
    // No handler: the monitor was stopped while this sample was on its way.
    if (handler_ == nullptr || !detector_.departs({x, y, z})) {
        return;
    }
    if (detector_.accept(wallClock_.now()) && onMotionDetected) {
        // Copied: the owner may replace the callback or destroy the monitor in it.
        const auto report = onMotionDetected;
        report();
    }
}

} // namespace sentrel
