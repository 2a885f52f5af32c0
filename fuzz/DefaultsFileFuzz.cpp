#include "Doubles.hpp"
#include "JsonMutator.hpp"
#include "MemoryFiles.hpp"
#include "Require.hpp"
#include "alerts/PendingCloudDeletionStore.hpp"
#include "core/SettingsStore.hpp"
#include "outputs/SavedOutputState.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/mac/files/DefaultsFile.hpp"

#include <string>
#include <vector>

// Any content of the defaults' file: what it holds is read by its type, a change leaves all other entries as they were,
// and whatever the product finds there it starts.

namespace sentrel::fuzz {
namespace {

using simulation::DefaultsFile;

constexpr const char* newKey = "fuzz.new";

Json entriesExcept(const Bytes& file, const std::string& key)
{
    Json entries = parseJson(file).value_or(Json{});
    entries.erase(key);
    return entries;
}

void readEntries(DefaultsFile& defaults, const Json& document)
{
    for (const auto& [key, value] : document.items()) {
        const auto text = defaults.text(key);
        require(text.has_value() == value.is_string(), "a text is read from what is none");
        require(!text || *text == value.get<std::string>(), "a text is read as another");
        require(!defaults.integer(key) || value.is_number_integer(), "an integer is read from what is none");
        require(!defaults.data(key) || value.is_string(), "data is read from what is no text");
        require(!defaults.texts(key) || value.is_array(), "texts are read from what is no array");
    }
}

void startOn(DefaultsFile& defaults)
{
    VirtualClock clock;
    VirtualScheduler process{clock};
    SettingsStore settings{MainActor{process}, defaults};
    settings.setSettings(settings.settings());
    PendingCloudDeletionStore deletions{PendingCloudDeletionStore::standardKey, defaults};
    require(deletions.orderedIDs().size() == deletions.ids().size(), "a deletion is owed twice");
    if (const auto state = defaults.data("alarmSavedOutputState")) {
        static_cast<void>(decodeSavedOutputState(*state));
    }
}

void check(const Bytes& content)
{
    MemoryFiles files;
    SilentJournal journal;
    const auto open = [&] { return DefaultsFile{files, journal, "/defaults", "app"}; };
    const std::filesystem::path file = open().file();
    files.contents[file] = content;

    const auto document = parseJson(content);
    const bool isGood = document && document->is_object();
    {
        DefaultsFile defaults = open();
        if (isGood) {
            readEntries(defaults, *document);
        }
        defaults.setInteger(newKey, 7);
    }
    require(open().integer(newKey) == 7, "a change is lost");
    if (isGood) {
        require(entriesExcept(content, newKey) == entriesExcept(files.contents[file], newKey),
                "a change of one entry changes another");
    } else {
        require(files.contents[std::filesystem::path{file} += ".damaged"] == content, "a damaged file is lost");
    }
    DefaultsFile defaults = open();
    startOn(defaults);
}

} // namespace
} // namespace sentrel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::fuzz::check({data, data + size});
    return 0;
}
