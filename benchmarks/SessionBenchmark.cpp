#include "BesideFloor.hpp"

#include "outputs/ToneBuffer.hpp"
#include "simulator/MacSession.hpp"

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
    simulator::MacSession session;
};

/// One armed hour; the limit is processor time in milliseconds.
void armedHour(benchmark::State& state, bool isResting, double limit)
{
    ArmedMac mac{isResting};
    double fastest = 1e9;
    for ([[maybe_unused]] auto turn : state) {
        auto hour = [&] { mac.session.clock().advance(1h); };
        const double seconds = secondsOf(hour, processorSeconds);
        fastest = std::min(fastest, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["work_ms"] = fastest * 1e3;
    state.counters["limit_ms"] = limit;
}
BENCHMARK_CAPTURE(armedHour, still, false, 5.0)->UseManualTime();
BENCHMARK_CAPTURE(armedHour, withFiftySamplesASecond, true, 200.0)->UseManualTime();

/// From a trigger to the player's `play`, beside rendering the tone. The whole simulated MacBook takes part: the
/// alert's and the user defaults' durable writes are in it, which on a Mac other processes see to.
void triggerToTone(benchmark::State& state)
{
    ArmedMac mac{false};
    std::vector<float> samples(ToneBuffer::frameCount);
    auto render = [&] {
        ToneBuffer::render(std::span<float, ToneBuffer::frameCount>{samples}, 0.8F);
        benchmark::DoNotOptimize(samples.data());
    };
    auto sound = [&] { mac.session.onMain([](SentrelApp& app) { app.coordinator().trigger(TriggerReason::motion); }); };
    double fastestRender = 1e9;
    double fastestSound = 1e9;
    for ([[maybe_unused]] auto turn : state) {
        fastestRender = std::min(fastestRender, secondsOf(render, processorSeconds));
        const double seconds = secondsOf(sound, processorSeconds);
        fastestSound = std::min(fastestSound, seconds);
        state.SetIterationTime(seconds);
        mac.session.stopAlarm();
    }
    state.counters["floor_ns"] = fastestRender * 1e9;
    state.counters["work_ns"] = fastestSound * 1e9;
    state.counters["ratio"] = fastestSound / fastestRender;
    state.counters["limit"] = 1.5;
}
BENCHMARK(triggerToTone)->UseManualTime()->Iterations(100);

} // namespace
} // namespace sentrel
