#include "Doubles.hpp"
#include "JsonMutator.hpp"
#include "MemoryFiles.hpp"
#include "Require.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "ports/DurableFile.hpp"
#include "runtime/VirtualScheduler.hpp"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

// Any files in the folder of alerts: lines that are in turn a file's name and its content. The store reads what is
// good, leaves what is not alone, and what it changes is found by the next launch.

namespace sentrel::fuzz {
namespace {

const std::filesystem::path folder{"/support/app/Alerts"};

std::string_view nextLine(std::string_view& rest)
{
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    return line;
}

MemoryFiles filesOf(std::string_view rest)
{
    MemoryFiles files;
    while (!rest.empty()) {
        const std::string name{nextLine(rest)};
        const std::string_view line = nextLine(rest);
        if (!name.empty() && name.find_first_of(std::string_view{"/\0", 2}) == std::string::npos) {
            files.contents[folder / name] = Bytes(line.begin(), line.end());
        }
    }
    return files;
}

/// The alerts that another file than their own holds, which is the work of somebody who copied files: only shown.
std::unordered_set<UUID> copiedAlerts(const MemoryFiles& files)
{
    std::unordered_set<UUID> ids;
    for (const auto& [file, content] : files.contents) {
        const auto document = parseJson(content);
        const auto stored = document ? decodeStoredAlert(*document) : std::nullopt;
        if (stored && file.filename() != stored->alert.id.text() + ".json") {
            ids.insert(stored->alert.id);
        }
    }
    return ids;
}

std::vector<StoredAlert> alertsOf(LocalAlertStore& store, const MemoryFiles& files)
{
    std::vector<StoredAlert> alerts = store.alerts();
    for (std::size_t i = 1; i < alerts.size(); ++i) {
        require(alerts[i - 1].alert.timestamp >= alerts[i].alert.timestamp, "alerts are not newest first");
    }
    const auto copied = copiedAlerts(files);
    std::erase_if(alerts, [&](const StoredAlert& stored) { return copied.contains(stored.alert.id); });
    return alerts;
}

void check(std::string_view input)
{
    MemoryFiles files = filesOf(input);
    const auto before = files.contents;
    FixedHost host;
    VirtualClock clock;
    VirtualScheduler process{clock};
    const MainActor actor{process};

    LocalAlertStore store{actor, files, host};
    const auto alerts = alertsOf(store, files);
    for (const auto& [file, content] : before) {
        require(files.exists(file) || file.extension() == ports::temporaryExtension, "reading removes a file");
    }
    for (const StoredAlert& stored : alerts) {
        store.setPendingUpload(stored.alert.id);
    }
    AlertEvent added;
    added.timestamp = Date{1e9};
    store.save(added, Bytes{1, 2, 3}, true);

    LocalAlertStore next{actor, files, host};
    const auto found = next.identifiers();
    require(found.contains(added.id), "a saved alert is lost");
    for (const StoredAlert& stored : alerts) {
        require(found.contains(stored.alert.id), "an alert is lost");
        const auto again = next.storedAlert(stored.alert.id);
        require(again && again->pendingUpload, "an alert forgets that it waits");
    }
    next.remove(found);
    for (const auto& [file, content] : before) {
        const auto id = UUID::parse(file.stem().string());
        require(!id || !found.contains(*id) || file != folder / (id->text() + ".json") || !files.exists(file),
                "a removed alert stays");
    }
}

} // namespace
} // namespace sentrel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::fuzz::check({reinterpret_cast<const char*>(data), size});
    return 0;
}
