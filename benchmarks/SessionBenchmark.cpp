#include "BesideFloor.hpp"

#include "simulation/stage/MacSession.hpp"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

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

} // namespace
} // namespace sentrel
