#pragma once

#include "ports/FileSystem.hpp"

namespace sentrel::posix {

/// The file system through POSIX calls, for every platform that has them. Requested modes ignore the umask; interrupted
/// calls are repeated; child processes don't inherit descriptors.
class PosixFileSystem final : public ports::FileSystem {
public:
    int createDirectories(const std::filesystem::path& directory, std::uint32_t mode) override;
    [[nodiscard]] std::optional<std::vector<std::string>> list(const std::filesystem::path& directory) override;
    [[nodiscard]] std::optional<Bytes> read(const std::filesystem::path& file) override;
    [[nodiscard]] bool exists(const std::filesystem::path& file) override;

    /// A symbolic link in the file's place is not followed (`ELOOP`).
    [[nodiscard]] std::unique_ptr<ports::WritableFile> create(const std::filesystem::path& file,
                                                              std::optional<std::uint32_t> mode, int& error) override;
    [[nodiscard]] int rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    [[nodiscard]] int synchronizeDirectory(const std::filesystem::path& directory) override;

    /// Removes a file or a link, never a folder.
    int remove(const std::filesystem::path& file) override;
};

} // namespace sentrel::posix
