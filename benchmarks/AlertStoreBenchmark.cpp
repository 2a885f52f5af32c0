#include "BesideFloor.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "ports/DurableFile.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/mac/SimulatedHost.hpp"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace sentrel {
namespace {

constexpr int alertCount = 1000;

/// A disk with a thousand alerts, and the store over it.
class Disk {
public:
    Disk()
    {
        std::string name = (std::filesystem::temp_directory_path() / "sentrel-benchmark-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error{"no temporary folder"};
        }
        root = name;
        folder = root / "Application Support" / "pelma.Sentrel" / "Alerts";
        std::filesystem::create_directories(folder);
        for (int i = 0; i < alertCount; ++i) {
            const AlertEvent event = alert(i);
            std::ofstream{folder / (event.id.text() + ".json")} << encodeJson(encodeStoredAlert({event, true}));
        }
    }
    ~Disk() { std::filesystem::remove_all(root); }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    static AlertEvent alert(int number)
    {
        UUID::Octets octets{};
        octets[0] = static_cast<std::uint8_t>(number >> 8);
        octets[1] = static_cast<std::uint8_t>(number);
        return {UUID{octets}, TriggerReason::motion, Date{7.8e8 + number}, "Mona's MacBook Pro", std::nullopt, true};
    }

    std::filesystem::path root;
    std::filesystem::path folder;
};

/// The work of any store at its first load: list, read and parse.
void readAndParse(const std::filesystem::path& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator{folder}) {
        std::ifstream file{entry.path(), std::ios::binary};
        std::ostringstream text;
        text << file.rdbuf();
        benchmark::DoNotOptimize(nlohmann::ordered_json::parse(text.str()));
    }
}

void firstLoadOfAThousandAlerts(benchmark::State& state)
{
    const Disk disk;
    posix::PosixFileSystem files;
    simulation::SimulatedHost host{disk.root, {}};
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    measureBesideFloor(
        state, alertCount, 1.3, [&] { readAndParse(disk.folder); },
        [&] {
            LocalAlertStore store{MainActor{scheduler}, files, host};
            benchmark::DoNotOptimize(store.alerts());
        });
}
BENCHMARK(firstLoadOfAThousandAlerts)->UseManualTime();

/// A bare atomic and durable write: temporary file, fsync, rename, fsync of the folder.
void writeBare(const std::filesystem::path& folder, const char* name, const std::string& content)
{
    const std::string target = (folder / name).string();
    const std::string temporary = target + ".tmp";
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (::write(file, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
        throw std::runtime_error{"short write"};
    }
    ::fsync(file);
    ::close(file);
    ::rename(temporary.c_str(), target.c_str());
    const int directory = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::fsync(directory);
    ::close(directory);
}

void saveWithPhoto(benchmark::State& state)
{
    const Disk disk;
    posix::PosixFileSystem files;
    simulation::SimulatedHost host{disk.root, {}};
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    LocalAlertStore store{MainActor{scheduler}, files, host};
    benchmark::DoNotOptimize(store.alerts());
    const std::string json = encodeJson(encodeStoredAlert({Disk::alert(1), true}));
    const std::string photo(200'000, 'x');
    const std::optional<Bytes> photoBytes = bytesOf(photo);
    const auto bare = disk.root / "bare";
    std::filesystem::create_directory(bare);
    measureBesideFloor(
        state, 1.0, 1.2,
        [&] {
            writeBare(bare, "alert.json", json);
            writeBare(bare, "alert.jpg", photo);
        },
        [&] { store.save(Disk::alert(1), photoBytes, true); });
}
BENCHMARK(saveWithPhoto)->UseManualTime();

} // namespace
} // namespace sentrel
