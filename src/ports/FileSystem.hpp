#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace sentrel::ports {

/// A file that is open for writing. The destructor closes it.
class WritableFile {
public:
    virtual ~WritableFile() = default;

    /// Writes all bytes at the end. Returns 0 or an `errno` value.
    [[nodiscard]] virtual int write(BytesView bytes) = 0;

    /// Returns once the file's content is on the medium (`fsync`; `F_FULLFSYNC` on a Mac). 0 or an `errno` value.
    [[nodiscard]] virtual int synchronize() = 0;
};

/// Single calls of the file system; the caller decides their order. Failures are `errno` values, 0 being success. Any
/// thread.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Creates the folder and its missing parents with this mode; 0 also when it exists.
    virtual int createDirectories(const std::filesystem::path& directory, std::uint32_t mode) = 0;

    /// Names of the entries, in no particular order; none when the folder can't be read.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> list(const std::filesystem::path& directory) = 0;

    /// The whole file; none when it can't be read.
    [[nodiscard]] virtual std::optional<Bytes> read(const std::filesystem::path& file) = 0;

    [[nodiscard]] virtual bool exists(const std::filesystem::path& file) = 0;

    /// Creates a file or empties the existing one, with this mode or, if none, the default for new files; null on
    /// failure, with `error` set.
    [[nodiscard]] virtual std::unique_ptr<WritableFile> create(const std::filesystem::path& file,
                                                               std::optional<std::uint32_t> mode, int& error) = 0;

    /// Replaces `to` by `from` atomically.
    [[nodiscard]] virtual int rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    /// Returns once the folder's entries are on the medium.
    [[nodiscard]] virtual int synchronizeDirectory(const std::filesystem::path& directory) = 0;

    virtual int remove(const std::filesystem::path& file) = 0;
};

} // namespace sentrel::ports
