#include "BesideFloor.hpp"

#include "runtime/RepeatingTimer.hpp"
#include "runtime/SerialQueue.hpp"
#include "simulation/stage/MacSession.hpp"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

std::filesystem::path makeFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "sentrel-benchmark-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error{"no temporary folder"};
    }
    return name;
}

/// An armed MacBook.
class ArmedMac {
public:
    explicit ArmedMac(bool isResting) : folder_(makeFolder()), session({}, folder_, SENTREL_SOURCE_DIR "/resources", 1)
    {
        session.mac().accelerometer.setResting(isResting);
        session.launch();
        session.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
    }
    ~ArmedMac() { std::filesystem::remove_all(folder_); }
    ArmedMac(const ArmedMac&) = delete;
    ArmedMac& operator=(const ArmedMac&) = delete;

private:
    std::filesystem::path folder_;

public:
    simulation::MacSession session;
};

/// The same hour on a bare clock: timers as frequent as those of an armed Mac, whose ticks do nothing, and a sensor's
/// samples, which hop over a queue to the main thread.
class BareHour {
public:
    explicit BareHour(bool hasSamples)
    {
        for (const Duration interval : {Duration{2s}, Duration{5s}, Duration{5s}, Duration{30s}}) {
            timers_.push_back(std::make_unique<RepeatingTimer>(scheduler_, scheduler_.mainExecutor(), interval, [] {}));
        }
        if (hasSamples) {
            timers_.push_back(std::make_unique<RepeatingTimer>(scheduler_, hardware_.executor(), 20ms, [this] {
                queue_.async([this] { post(scheduler_.mainExecutor(), [] { benchmark::ClobberMemory(); }); });
            }));
        }
    }
    void pass() { clock_.advance(1h); }

private:
    VirtualClock clock_;
    VirtualScheduler scheduler_{clock_};
    SerialQueue hardware_{scheduler_, "hardware", QualityOfService::userInteractive};
    SerialQueue queue_{scheduler_, "samples", QualityOfService::userInteractive};
    std::vector<std::unique_ptr<RepeatingTimer>> timers_;
};

/// Moments of an hour at which anything is due.
double wakesAnHour(VirtualClock& clock)
{
    double wakes = 0;
    const Instant end = clock.now() + 1h;
    for (auto next = clock.nextDeadline(); next && *next <= end; next = clock.nextDeadline()) {
        clock.runUntil(*next);
        ++wakes;
    }
    return wakes;
}

/// One armed hour beside a bare one.
void armedHour(benchmark::State& state, bool isResting, double limit)
{
    ArmedMac mac{isResting};
    BareHour bare{isResting};
    double fastest = 1e9;
    double fastestBare = 1e9;
    const double wakes = wakesAnHour(mac.session.clock());
    for ([[maybe_unused]] auto turn : state) {
        auto bareHour = [&] { bare.pass(); };
        auto hour = [&] { mac.session.clock().advance(1h); };
        fastestBare = std::min(fastestBare, secondsOf(bareHour, processorSeconds));
        const double seconds = secondsOf(hour, processorSeconds);
        fastest = std::min(fastest, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["floor_ns"] = fastestBare * 1e9;
    state.counters["work_ns"] = fastest * 1e9;
    state.counters["ratio"] = fastest / fastestBare;
    state.counters["limit"] = limit;
    state.counters["wakes_an_hour"] = wakes;
}
BENCHMARK_CAPTURE(armedHour, still, false, 10.0)->UseManualTime();
BENCHMARK_CAPTURE(armedHour, withFiftySamplesASecond, true, 3.0)->UseManualTime();

} // namespace
} // namespace sentrel
