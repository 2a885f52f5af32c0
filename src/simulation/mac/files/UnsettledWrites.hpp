#pragma once

#include "ports/FileSystem.hpp"

#include <filesystem>
#include <optional>
#include <set>
#include <vector>

namespace sentrel::simulation {

/// What a disk has been told and may still forget: content that no one has synchronised, and names in folders that no
/// one has synchronised. No lock of its own.
class UnsettledWrites {
public:
    void wrote(const std::filesystem::path& file) { unwritten_.insert(file); }
    void synchronized(const std::filesystem::path& file) { unwritten_.erase(file); }
    void removed(const std::filesystem::path& file);

    /// `replaced` is what the name stood for before; none when it was free.
    void renamed(const std::filesystem::path& from, const std::filesystem::path& to, std::optional<Bytes> replaced);
    void synchronizedDirectory(const std::filesystem::path& directory);

    /// The power fails: the disk forgets as much as it may. Of unsynchronised content the first half stays, under its
    /// new name; where only the name was unsettled, the old file is back. A new or removed name counts as settled.
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
