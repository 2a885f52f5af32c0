#pragma once

#include "posix/PosixFileSystem.hpp"
#include "simulation/icloud/ServerRecord.hpp"

#include <atomic>
#include <cstdint>
#include <filesystem>

namespace sentrel::simulation {

/// Converts records between a Mac, where assets are files, and the server. Downloads go to a folder of the system's
/// own, which the faults of the product's files don't affect. Any thread.
class AssetFolder {
public:
    /// Empties the folder; the first download creates it.
    explicit AssetFolder(std::filesystem::path folder);

    /// The record with its assets' content. Throws error 16 (asset file not found) when a file can't be read.
    [[nodiscard]] ServerRecord uploaded(const ports::CloudRecord& record);

    /// The record with its assets as new files. Throws error 35 (asset not available) when one can't be written.
    [[nodiscard]] ports::CloudRecord downloaded(ServerRecord record);

    /// Converts a record; passes an error through.
    [[nodiscard]] ports::CloudRecordResult downloaded(ServerRecordResult result);

private:
    [[nodiscard]] ports::CloudAsset write(const Bytes& content);

    posix::PosixFileSystem files_;
    const std::filesystem::path folder_;
    std::atomic<std::uint64_t> written_ = 0;
};

} // namespace sentrel::simulation
