#pragma once

#include "simulation/stage/Scenario.hpp"

#include <filesystem>

namespace sentrel::simulation {

/// The folder of one play: the simulated MacBook's disk beside what is kept of the play. A folder of its own when none
/// is asked for, which goes away with this object.
class PlayFolder {
public:
    /// Empties what an earlier play left in the folder, and nothing else: a folder that holds files of these names
    /// from elsewhere is refused. Throws `PlayError`.
    explicit PlayFolder(const std::optional<std::filesystem::path>& wanted);
    ~PlayFolder();
    PlayFolder(const PlayFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] bool isKept() const { return isKept_; }
    [[nodiscard]] std::filesystem::path events() const { return path_ / "events.jsonl"; }
    [[nodiscard]] std::filesystem::path sound() const { return path_ / "alarm.wav"; }

    /// Copies "Application Support" and "Preferences" of a folder onto the disk. Throws `PlayError`.
    void copyFiles(const std::filesystem::path& from) const;

private:
    bool isKept_ = false;
    std::filesystem::path path_;
};

} // namespace sentrel::simulation
