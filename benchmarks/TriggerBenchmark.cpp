#include "BesideFloor.hpp"

#include "outputs/ToneBuffer.hpp"
#include "ports/DurableFile.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/MainActor.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

/// An armed MacBook without a camera. It notes when each kind of event was first noted after the charger was pulled.
class GuardedMac {
public:
    explicit GuardedMac(bool isArmed = true)
    {
        session_.log().observe(
            [this](const simulation::Event& event) { noted_.try_emplace(event.name, processorSeconds()); });
        if (isArmed) {
            arm();
        }
    }

    void arm()
    {
        session_.launch();
        session_.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
        session_.clock().advance(10s);
    }

    /// The charger is pulled, and everything that this leads to at once is done.
    void unplug()
    {
        noted_.clear();
        start_ = processorSeconds();
        session_.mac().power.setAC(false);
        session_.clock().runReady();
    }
    void rest()
    {
        session_.stopAlarm();
        session_.mac().power.setAC(true);
        session_.clock().advance(10s);
    }

    /// Processor time between two events since the charger was pulled; without `from`, since then. Infinite if the
    /// event was not noted.
    [[nodiscard]] double seconds(const std::string& to, const std::string& from = {}) const
    {
        const auto end = noted_.find(to);
        const auto begin = noted_.find(from);
        if (end == noted_.end() || (!from.empty() && begin == noted_.end())) {
            return std::numeric_limits<double>::infinity();
        }
        return end->second - (from.empty() ? start_ : begin->second);
    }
    [[nodiscard]] simulation::MacSession& session() { return session_; }

private:
    TemporaryFolder disk_;
    std::map<std::string, double> noted_;
    double start_ = 0.0;
    simulation::MacSession session_{{}, disk_.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

struct Fastest {
    double floor = std::numeric_limits<double>::max();
    double work = std::numeric_limits<double>::max();

    void report(benchmark::State& state, double limit) const
    {
        state.counters["floor_ns"] = floor * 1e9;
        state.counters["work_ns"] = work * 1e9;
        state.counters["ratio"] = work / floor;
        state.counters["limit"] = limit;
    }
};

Async<void> noWork()
{
    co_return;
}

struct Span {
    const char* from; ///< an event; empty: the charger's change
    const char* to;
};

/// The time of the span after a trigger, beside that of `floor`.
template <class Floor> void measure(benchmark::State& state, GuardedMac& mac, Span span, Floor floor, double goal)
{
    Fastest fastest;
    for ([[maybe_unused]] auto turn : state) {
        mac.unplug();
        const double seconds = mac.seconds(span.to, span.from);
        fastest.floor = std::min(fastest.floor, secondsOf(floor, processorSeconds));
        fastest.work = std::min(fastest.work, seconds);
        state.SetIterationTime(seconds);
        mac.rest();
    }
    fastest.report(state, goal);
}

/// From the charger's change to the trigger, beside two posted jobs: the system's notification and the main actor's
/// turn.
void eventToDecision(benchmark::State& state)
{
    GuardedMac mac;
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    auto hops = [&] {
        post(scheduler.mainExecutor(), [&scheduler] { MainActor{scheduler}.spawn(noWork()); });
        clock.runReady();
    };
    measure(state, mac, {"", "trigger"}, hops, 20.0);
}
BENCHMARK(eventToDecision)->UseManualTime()->Iterations(200);

/// From the trigger until the speaker emits, beside rendering the tone and replacing a file of as many bytes: before
/// the tone starts, the speaker's state is stored for the case of a crash.
void decisionToFirstSample(benchmark::State& state)
{
    GuardedMac mac;
    TemporaryFolder folder;
    const std::string defaults(600, 'x');
    const auto samples = std::make_unique<float[]>(ToneBuffer::frameCount);
    auto storeAndRender = [&] {
        std::ofstream{folder.path() / "new"} << defaults;
        std::filesystem::rename(folder.path() / "new", folder.path() / "defaults.json");
        ToneBuffer::render(std::span<float, ToneBuffer::frameCount>{samples.get(), ToneBuffer::frameCount}, 0.8F);
        benchmark::DoNotOptimize(samples.get());
    };
    measure(state, mac, {"trigger", "alarm.heard"}, storeAndRender, 2.5);
}
BENCHMARK(decisionToFirstSample)->UseManualTime()->Iterations(200);

/// From the trigger until the alert, without a photo, is on the disk, beside a durable write of as many bytes.
void triggerToAlertOnDisk(benchmark::State& state)
{
    GuardedMac mac;
    TemporaryFolder folder;
    posix::PosixFileSystem files;
    const std::string document(180, 'x');
    auto write = [&] {
        static_cast<void>(ports::writeDurably(files, folder.path() / "alert.json", bytesOf(document), 0600));
    };
    measure(state, mac, {"trigger", "alert.saved"}, write, 10.0);
}
BENCHMARK(triggerToAlertOnDisk)->UseManualTime()->Iterations(200);

/// From the launch until the Mac is armed and at rest; the limit is processor time in milliseconds.
void startUpToArmed(benchmark::State& state)
{
    double fastest = std::numeric_limits<double>::max();
    for ([[maybe_unused]] auto turn : state) {
        GuardedMac mac{false};
        auto arm = [&mac] { mac.arm(); };
        const double seconds = secondsOf(arm, processorSeconds);
        fastest = std::min(fastest, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["work_ms"] = fastest * 1e3;
    state.counters["limit_ms"] = 20.0;
}
BENCHMARK(startUpToArmed)->UseManualTime()->Iterations(20);

double residentKilobytes()
{
    std::ifstream status{"/proc/self/status"};
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") {
            double value = 0;
            status >> value;
            return value;
        }
    }
    return 0;
}

/// How much memory an armed Mac gains in a thousand hours, after one; the limit is in megabytes. The log, which is the
/// simulation's, keeps nothing.
void memoryOfAThousandArmedHours(benchmark::State& state)
{
    GuardedMac mac;
    mac.session().log().keepNothing();
    mac.session().clock().advance(1h);
    const double before = residentKilobytes();
    for ([[maybe_unused]] auto turn : state) {
        mac.session().clock().advance(1000h);
    }
    state.counters["gained_mb"] = (residentKilobytes() - before) / 1000;
    state.counters["limit_mb"] = 1.0;
}
BENCHMARK(memoryOfAThousandArmedHours)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace sentrel
