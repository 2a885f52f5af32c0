#include "BesideFloor.hpp"

#include "runtime/VirtualScheduler.hpp"
#include "sensors/MotionMonitor.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"

#include <array>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace sentrel {
namespace {

constexpr std::size_t sampleCount = 1024;

/// A machine at rest with a sensor's noise; the seed is fixed, so that every run measures the same.
std::vector<AccelerationSample> restingSamples()
{
    std::mt19937 generator{1}; // NOLINT(cert-msc51-cpp): repeatable on purpose
    std::normal_distribution<double> noise{0.0, 0.01};
    std::vector<AccelerationSample> samples(sampleCount);
    for (AccelerationSample& sample : samples) {
        sample = {noise(generator), noise(generator), 1.0 + noise(generator)};
    }
    return samples;
}

class Filter {
public:
    virtual ~Filter() = default;
    virtual double feed(const AccelerationSample& sample) = 0;
};

/// Ten floating-point operations on a sample and on what the samples before it have left, as the decision has it.
class SmoothingFilter final : public Filter {
public:
    double feed(const AccelerationSample& sample) override
    {
        x_ += 0.05 * (sample.x - x_);
        y_ += 0.05 * (sample.y - y_);
        z_ += 0.05 * (sample.z - z_);
        return x_ + y_;
    }

private:
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
};

void arithmeticBesideTenOperations(benchmark::State& state)
{
    const auto samples = restingSamples();
    MotionDetector detector{0.5};
    std::unique_ptr<Filter> filter = std::make_unique<SmoothingFilter>();
    benchmark::DoNotOptimize(filter);
    const auto floor = [&] {
        for (const AccelerationSample& sample : samples) {
            benchmark::DoNotOptimize(filter->feed(sample));
        }
    };
    const auto work = [&] {
        for (const AccelerationSample& sample : samples) {
            benchmark::DoNotOptimize(detector.departs(sample));
        }
    };
    measureBesideFloor(state, static_cast<double>(sampleCount), 2.0, floor, work);
}
BENCHMARK(arithmeticBesideTenOperations)->UseManualTime();

/// An accelerometer whose events are delivered by whoever calls `deliver` on its queue.
class BenchmarkHid final : public ports::HidEventSystem {
public:
    class Service final : public ports::HidService {
        bool setProperty(const std::string& /*key*/, std::int64_t /*value*/) override { return true; }
    };

    class Client final : public ports::HidClient {
    public:
        explicit Client(BenchmarkHid& hid) : hid_(hid) {}
        void setMatching(const std::map<std::string, std::int64_t>& /*matching*/) override {}
        std::optional<std::vector<std::unique_ptr<ports::HidService>>> copyServices() override
        {
            std::vector<std::unique_ptr<ports::HidService>> services;
            services.push_back(std::make_unique<Service>());
            return services;
        }
        void registerEventCallback(std::function<void(const ports::HidEvent*)> received) override
        {
            hid_.received_ = std::move(received);
        }
        void unregisterEventCallback() override { hid_.received_ = nullptr; }
        void schedule(SerialQueue& queue) override { hid_.queue_ = &queue; }
        void unschedule(SerialQueue& /*queue*/) override { hid_.queue_ = nullptr; }

    private:
        BenchmarkHid& hid_;
    };

    std::unique_ptr<ports::HidClient> createClient() override { return std::make_unique<Client>(*this); }

    [[nodiscard]] SerialQueue& queue() { return *queue_; }
    void deliver(const ports::HidEvent& event) { received_(&event); }

private:
    std::function<void(const ports::HidEvent*)> received_;
    SerialQueue* queue_ = nullptr;
};

class SampleEvent final : public ports::HidEvent {
public:
    AccelerationSample sample;

    [[nodiscard]] std::uint32_t type() const override { return 13; }
    [[nodiscard]] double floatValue(std::uint32_t field) const override
    {
        return field == 0xD0000 ? sample.x : field == 0xD0001 ? sample.y : sample.z;
    }
};

Async<void> nothing()
{
    co_return;
}

/// From a job of the sensor's queue to the decision on the main actor, beside an empty job on that queue which resumes
/// an empty coroutine there.
void sampleBesideEmptyHop(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    const MainActor mainActor{scheduler};
    simulation::SimulatedWallClock wallClock{scheduler, {}};
    BenchmarkHid hid;
    MotionMonitor monitor{mainActor, hid, wallClock};
    monitor.start(0.35);
    SerialQueue& queue = hid.queue();
    const auto samples = restingSamples();
    SampleEvent event;
    const auto floor = [&] {
        for (std::size_t i = 0; i < sampleCount; ++i) {
            queue.async([&mainActor] { mainActor.spawn(nothing()); });
            clock.runReady();
        }
    };
    const auto work = [&] {
        for (const AccelerationSample& sample : samples) {
            event.sample = sample;
            queue.async([&hid, &event] { hid.deliver(event); });
            clock.runReady();
        }
    };
    measureBesideFloor(state, static_cast<double>(sampleCount), 3.0, floor, work);
}
BENCHMARK(sampleBesideEmptyHop)->UseManualTime();

} // namespace
} // namespace sentrel
