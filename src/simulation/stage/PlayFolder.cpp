#include "simulation/stage/PlayFolder.hpp"

#include "simulation/stage/Player.hpp"

#include <array>
#include <cstdlib>
#include <string>
#include <system_error>

namespace sentrel::simulation {

namespace {

namespace fs = std::filesystem;

/// The files of a play's folder. The first, the events, identifies a folder as a play's.
constexpr std::array<const char*, 7> leftBehind{
    "events.jsonl", "alarm.wav", "Application Support", "Preferences", "Keychains", "iCloud", "tmp"};

fs::path makeTemporaryFolder()
{
    std::string name = (fs::temp_directory_path() / "sentrel-play-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw PlayError{"can't make a temporary folder in " + fs::temp_directory_path().string()};
    }
    return name;
}

void clearFolder(const fs::path& folder)
{
    const bool isOurs = fs::exists(folder / leftBehind.front());
    for (const char* name : leftBehind) {
        const fs::path entry = folder / name;
        if (!fs::exists(fs::symlink_status(entry))) {
            continue;
        }
        if (!isOurs) {
            throw PlayError{"'" + folder.string() + "' contains '" + name +
                            "', which no earlier play has written; choose another folder"};
        }
        fs::remove_all(entry);
    }
}

} // namespace

PlayFolder::PlayFolder(const std::optional<fs::path>& wanted) : isKept_(wanted.has_value())
{
    try {
        if (!wanted) {
            path_ = makeTemporaryFolder();
            return;
        }
        path_ = *wanted;
        fs::create_directories(path_);
        clearFolder(path_);
    } catch (const fs::filesystem_error& error) {
        throw PlayError{"can't use the folder '" + path_.string() + "': " + error.code().message()};
    }
}

PlayFolder::~PlayFolder()
{
    if (!isKept_) {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
}

void PlayFolder::copyFiles(const fs::path& from) const
{
    try {
        for (const char* name : {"Application Support", "Preferences"}) {
            if (fs::exists(from / name)) {
                fs::copy(from / name, path_ / name, fs::copy_options::recursive);
            }
        }
    } catch (const fs::filesystem_error& error) {
        throw PlayError{"can't copy the files in '" + from.string() + "': " + error.code().message()};
    }
}

} // namespace sentrel::simulation
