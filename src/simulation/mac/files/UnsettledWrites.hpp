#pragma once

#include "ports/FileSystem.hpp"

#include <filesystem>
#include <optional>
#include <set>
#include <vector>

namespace sentrel::simulation {

/// Writes that a power cut may lose: unsynchronised content, and names in unsynchronised folders. Not thread-safe.
class UnsettledWrites {
public:
    void wrote(const std::filesystem::path& file) { unwritten_.insert(file); }
    void synchronized(const std::filesystem::path& file) { unwritten_.erase(file); }
    void removed(const std::filesystem::path& file);

    /// `replaced` is the former content under the name; none if there was no file.
    void renamed(const std::filesystem::path& from, const std::filesystem::path& to, std::optional<Bytes> replaced);
    void synchronizedDirectory(const std::filesystem::path& directory);

    /// The power fails: the disk loses as much as it may. Unsynchronised content keeps its first half, under its new
    /// name; if only the name was unsynchronised, the old file is back. A new or removed name counts as settled.
    void lose(ports::FileSystem& disk);

private:
    struct Rename {
        std::filesystem::path from;
        std::filesystem::path to;
        std::optional<Bytes> replaced;
    };

    std::set<std::filesystem::path> unwritten_;
    std::vector<Rename> renames_; // oldest first
};

} // namespace sentrel::simulation
