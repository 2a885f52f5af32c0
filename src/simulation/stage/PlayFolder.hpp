#pragma once

#include "simulation/stage/Scenario.hpp"

#include <filesystem>

namespace sentrel::simulation {

/// The folder of one play: the simulated MacBook's disk and the play's output. By default a temporary folder, removed
/// with this object.
class PlayFolder {
public:
    /// Removes the remains of an earlier play from the folder, and nothing else: a folder with files of these names
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
