#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace sentrel::ports {

/// A file that is open for writing. Its end closes it.
class WritableFile {
public:
    virtual ~WritableFile() = default;

    /// Writes all bytes at the end. Returns 0 or an `errno` value.
    [[nodiscard]] virtual int write(BytesView bytes) = 0;

    /// Returns once the file's content is on the medium (`fsync`; `F_FULLFSYNC` on a Mac). 0 or an `errno` value.
    [[nodiscard]] virtual int synchronize() = 0;
};

/// The file system, call by call; whoever writes decides the order of calls. Failures are `errno` values, 0 being
/// success. Any thread.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Makes the folder and those above it, each with this mode; 0 also when it is there already.
    virtual int createDirectories(const std::filesystem::path& directory, std::uint32_t mode) = 0;

    /// Names of the entries, in no particular order; none when the folder can't be read.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> list(const std::filesystem::path& directory) = 0;

    /// The whole file; none when it can't be read.
    [[nodiscard]] virtual std::optional<Bytes> read(const std::filesystem::path& file) = 0;

    [[nodiscard]] virtual bool exists(const std::filesystem::path& file) = 0;

    /// Makes a new file or empties the one that is there, with this mode, or, without one, as new files are made there;
    /// null when that fails, with `error` set.
    [[nodiscard]] virtual std::unique_ptr<WritableFile> create(const std::filesystem::path& file,
                                                               std::optional<std::uint32_t> mode, int& error) = 0;

    /// Puts the file in the other's place in one step.
    [[nodiscard]] virtual int rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    /// Returns once the folder's entries are on the medium.
    [[nodiscard]] virtual int synchronizeDirectory(const std::filesystem::path& directory) = 0;

    virtual int remove(const std::filesystem::path& file) = 0;
};

} // namespace sentrel::ports
