#include "BesideFloor.hpp"

#include "cloud/AlertRecord.hpp"
#include "cloud/CloudKitService.hpp"
#include "ports/Journal.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "simulation/icloud/SimulatedICloud.hpp"
#include "simulation/mac/SimulatedHost.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/security/SeededRandom.hpp"
#include "support/MemoryDefaults.hpp"
#include "support/TemporaryFolder.hpp"

#include <chrono>
#include <filesystem>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

constexpr int alertCount = 10'000;

class Silence final : public ports::Journal {
public:
    void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
};

/// Stands in the main thread's queue over and over: between two of its turns the others had theirs. In processor time,
/// since on a busy machine the wall clock tells of other programs. Shared with the turn that waits still when the watch
/// is over.
class TurnWatch : public std::enable_shared_from_this<TurnWatch> {
public:
    explicit TurnWatch(Executor& executor) : executor_(executor) {}

    void begin()
    {
        last_ = processorSeconds();
        stand();
    }
    void end() { isOver_ = true; }
    [[nodiscard]] double longest() const { return longest_; }

private:
    void stand()
    {
        post(executor_, [self = shared_from_this()] { self->look(); });
    }
    void look()
    {
        if (!isOver_) {
            const double now = processorSeconds();
            longest_ = std::max(longest_, now - last_);
            last_ = now;
            stand();
        }
    }

    Executor& executor_;
    double last_ = 0.0;
    double longest_ = 0.0;
    bool isOver_ = false;
};

UUID identifier(int number)
{
    UUID::Octets octets{};
    octets[0] = static_cast<std::uint8_t>(number >> 8);
    octets[1] = static_cast<std::uint8_t>(number);
    return UUID{octets};
}

AlertEvent alert(int number)
{
    return {identifier(number), TriggerReason::motion, Date{8e8 + number}, "Mona's MacBook Pro", std::nullopt, true};
}

/// One Mac on real threads. Its iCloud holds ten thousand alerts, without a catalog at first, and answers within a
/// millisecond.
class Mac {
public:
    Mac()
    {
        icloud.link.setLatency(1ms);
        std::filesystem::create_directories(host.temporaryDirectory());
        run(fill());
    }

    /// Runs the work on the main actor; gives the main thread's longest turn meanwhile, in seconds of
    /// its processor.
    double run(Async<void> work)
    {
        const auto watch = std::make_shared<TurnWatch>(scheduler.mainExecutor());
        MainActor{scheduler}.spawn(watched(std::move(work), watch));
        scheduler.runMain();
        return watch->longest();
    }

    /// The process begins with the cache that the last one left, or with none.
    void launch(bool hasCache)
    {
        cloud.reset();
        if (!hasCache) {
            std::filesystem::remove_all(*host.applicationSupportDirectory());
        }
        cloud = std::make_unique<CloudKitService>(
            MainActor{scheduler}, CloudKitService::Ports{icloud.account, icloud.database, defaults, files, host,
                                                         wallClock, random, language, journal});
    }

    Async<void> refresh()
    {
        co_await cloud->refreshAlerts();
        co_await sleepFor(untilWritten);
    }
    Async<void> upload(int number)
    {
        Bytes photo(200'000, 0x5A);
        co_await cloud->refreshAvailability(true);
        co_await cloud->uploadAlert(alert(number), std::move(photo));
        co_await sleepFor(untilWritten);
    }

    [[nodiscard]] std::size_t known() const { return cloud->cachedAlerts().size(); }

private:
    static constexpr Duration untilWritten = 1300ms; // the cache file follows a second after a change

    Async<void> watched(Async<void> work, std::shared_ptr<TurnWatch> watch)
    {
        watch->begin();
        co_await std::move(work);
        watch->end();
        scheduler.stopMain();
    }
    Async<void> fill()
    {
        for (int start = 0; start < alertCount; start += 400) {
            std::vector<ports::CloudRecord> records;
            for (int number = start; number < start + 400; ++number) {
                records.push_back(alertRecord(alert(number), "Mona's MacBook Pro", language));
            }
            std::vector<std::string> nothing;
            co_await icloud.database.modify(std::move(records), std::move(nothing), ports::CloudSavePolicy::allKeys,
                                            false);
        }
    }

    TemporaryFolder folder;
    ThreadScheduler scheduler;
    Silence journal;
    simulation::SimulatedWallClock wallClock{scheduler, Date{8.1e8}};
    posix::PosixFileSystem files;
    test::MemoryDefaults defaults;
    simulation::SeededRandom random{1};
    simulation::SimulatedHost host{folder.path(), {}};
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", journal};
    simulation::PrivateCloud server{folder.path() / "server", wallClock, journal};
    simulation::SimulatedICloud icloud{{scheduler, scheduler, journal, server, "MacBook", folder.path() / "assets", 1}};
    std::unique_ptr<CloudKitService> cloud;
};

/// How long the main thread is busy at a stretch with iCloud and ten thousand alerts. The shortest of some runs, since
/// a busy machine lengthens turns and shortens none.
void longestTurnWithTenThousandAlerts(benchmark::State& state)
{
    Mac mac;
    double whole = std::numeric_limits<double>::max();
    double incremental = whole;
    double upload = whole;
    int number = alertCount;
    for ([[maybe_unused]] auto turn : state) {
        mac.launch(false);
        whole = std::min(whole, mac.run(mac.refresh()));
        mac.launch(true);
        incremental = std::min(incremental, mac.run(mac.refresh()));
        upload = std::min(upload, mac.run(mac.upload(number++)));
        if (mac.known() != static_cast<std::size_t>(number)) {
            state.SkipWithError("alerts are missing");
            break;
        }
    }
    state.counters["whole_refresh_ms"] = whole * 1e3;
    state.counters["refresh_ms"] = incremental * 1e3;
    state.counters["upload_ms"] = upload * 1e3;
    state.counters["limit_ms"] = 5.0;
}
BENCHMARK(longestTurnWithTenThousandAlerts)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace sentrel
