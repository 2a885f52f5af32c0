#pragma once

#include "cloud/CloudKitService.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/SimulatedICloud.hpp"
#include "simulation/mac/SimulatedHost.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/security/SeededRandom.hpp"
#include "support/MemoryDefaults.hpp"
#include "support/TemporaryFolder.hpp"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <utility>

namespace sentrel::test {

using simulation::CloudOperation;

/// iCloud's server, for as many Macs as a story has.
struct CloudWorld {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    simulation::EventLog log{hardware};
    simulation::SimulatedWallClock serverClock{hardware, Date{8.1e8}};
    TemporaryFolder folder;
    simulation::PrivateCloud server{folder.path() / "server", serverClock, log};
};

/// A wall clock that somebody turns.
struct TurnedClock final : ports::WallClock {
    explicit TurnedClock(ports::WallClock& itsTrue) : trueClock(itsTrue) {}
    [[nodiscard]] Date now() override { return trueClock.now().addingSeconds(offset); }
    ports::WallClock& trueClock;
    double offset = 0.0;
};

/// An alert that its number tells apart.
[[nodiscard]] inline AlertEvent alertNumber(int number)
{
    UUID::Octets octets{};
    octets[0] = static_cast<std::uint8_t>(number >> 8);
    octets[1] = static_cast<std::uint8_t>(number);
    octets[15] = 0xAF;
    return {UUID{octets}, TriggerReason::motion, Date{8e8 + number}, "Mac", std::nullopt, true};
}

[[nodiscard]] inline std::unordered_set<UUID> idsOf(std::initializer_list<int> numbers)
{
    std::unordered_set<UUID> ids;
    for (const int number : numbers) {
        ids.insert(alertNumber(number).id);
    }
    return ids;
}

[[nodiscard]] inline int numberOf(const AlertEvent& alert)
{
    return static_cast<int>(alert.timestamp.secondsSinceReferenceDate - 8e8);
}

/// As much of a Mac as talks to iCloud.
class CloudMac {
public:
    CloudMac(CloudWorld& itsWorld, const std::string& name, std::uint64_t seed = 1)
        : world(itsWorld),
          disk(world.folder.path() / name),
          random(seed),
          host(disk, {.localizedName = name}),
          icloud({process, world.hardware, world.log, world.server, name, disk / "assets", seed})
    {
        std::filesystem::create_directories(temporaryFolder());
        launch();
    }
    ~CloudMac() { crash(); }
    CloudMac(const CloudMac&) = delete;

    void launch()
    {
        cloud = std::make_unique<CloudKitService>(
            MainActor{process}, CloudKitService::Ports{icloud.account, icloud.database, defaults, files, host,
                                                       wallClock, random, language, world.log});
    }
    void crash()
    {
        cloud.reset();
        process.endProcess();
    }
    void relaunch()
    {
        crash();
        launch();
        static_cast<void>(await(cloud->refreshAvailability(true)));
    }

    /// Runs the work and whatever happens meanwhile to its end; gives what it gives and throws what it throws.
    template <class T> T await(Async<T> work)
    {
        const Task<T> task = MainActor{process}.spawn(std::move(work));
        for (int waited = 0; !task.isFinished(); ++waited) {
            if (waited > 20'000) {
                throw std::runtime_error{"it never ends"};
            }
            world.clock.advance(std::chrono::milliseconds{5});
        }
        Outcome<T> outcome;
        MainActor{process}.spawn(keep(task, outcome));
        world.clock.runReady();
        if (outcome.error) {
            std::rethrow_exception(outcome.error);
        }
        if constexpr (!std::is_void_v<T>) {
            return *std::move(outcome.value);
        }
    }

    /// The alerts that the Mac knows to be in the cloud, by their numbers.
    [[nodiscard]] std::set<int> known() const
    {
        std::set<int> numbers;
        for (const AlertEvent& alert : cloud->cachedAlerts()) {
            numbers.insert(numberOf(alert));
        }
        return numbers;
    }
    std::set<int> refreshed()
    {
        await(cloud->refreshAlerts());
        return known();
    }

    /// The next requests of this kind fail, or all with -1 times.
    void fail(int code, CloudOperation operation, int times = 1, std::string record = {})
    {
        icloud.link.faults().add({simulation::cloudError(code), operation, std::move(record), times});
    }

    /// How many requests the work makes.
    template <class T> std::uint64_t requestsOf(Async<T> work)
    {
        const std::uint64_t before = icloud.link.requests();
        static_cast<void>(await(std::move(work)), 0);
        return icloud.link.requests() - before;
    }

    [[nodiscard]] std::filesystem::path temporaryFolder() const { return disk / "tmp"; }
    [[nodiscard]] std::filesystem::path cacheFile() const
    {
        return disk / "Application Support" / "Sentrel" / "alert-metadata-cache.json";
    }

    CloudWorld& world;
    VirtualScheduler process{world.clock};
    const std::filesystem::path disk;
    posix::PosixFileSystem posixFiles;
    simulation::SimulatedFileSystem files{posixFiles};
    MemoryDefaults defaults;
    TurnedClock wallClock{world.serverClock};
    simulation::SeededRandom random;
    simulation::SimulatedHost host;
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", world.log};
    simulation::SimulatedICloud icloud;
    std::unique_ptr<CloudKitService> cloud;

private:
    template <class T> struct Outcome {
        std::optional<std::conditional_t<std::is_void_v<T>, int, T>> value;
        std::exception_ptr error;
    };

    template <class T> static Async<void> keep(Task<T> task, Outcome<T>& outcome)
    {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await task;
            } else {
                outcome.value = co_await task;
            }
        } catch (...) {
            outcome.error = std::current_exception();
        }
    }
};

/// The error's kind and code, or "done".
template <class T> std::string outcomeOf(CloudMac& mac, Async<T> work)
{
    try {
        static_cast<void>(mac.await(std::move(work)), 0);
        return "done";
    } catch (const ports::CloudError& error) {
        return "CloudKit " + std::to_string(error.code);
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace sentrel::test
