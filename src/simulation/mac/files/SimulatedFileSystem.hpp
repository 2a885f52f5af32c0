#pragma once

#include "ports/FileSystem.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/files/UnsettledWrites.hpp"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>

namespace sentrel::simulation {

/// A real file system whose calls are counted and can be made to fail. Any thread; cut the power only while no call is
/// under way.
///
/// Synchronising protects writes against the simulated power cut only. It doesn't wait for the host's medium: files
/// outlive this program without that.
class SimulatedFileSystem final : public ports::FileSystem {
public:
    /// Numbers of calls, including those of open files.
    struct Counts {
        std::uint64_t calls = 0;
        std::uint64_t reads = 0; ///< of these: `list`, `read` and `exists`
    };

    explicit SimulatedFileSystem(ports::FileSystem& disk) : disk_(disk) {}

    int createDirectories(const std::filesystem::path& directory, std::uint32_t mode) override;
    [[nodiscard]] std::optional<std::vector<std::string>> list(const std::filesystem::path& directory) override;
    [[nodiscard]] std::optional<Bytes> read(const std::filesystem::path& file) override;
    [[nodiscard]] bool exists(const std::filesystem::path& file) override;
    [[nodiscard]] std::unique_ptr<ports::WritableFile> create(const std::filesystem::path& file,
                                                              std::optional<std::uint32_t> mode, int& error) override;
    [[nodiscard]] int rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    [[nodiscard]] int synchronizeDirectory(const std::filesystem::path& directory) override;
    int remove(const std::filesystem::path& file) override;

    /// Named after the call that fails: `create-directories`, `create`, `rename` and `remove` with `EACCES`, `write`
    /// with `ENOSPC` when half of the bytes are written, `synchronize` (a file or a folder) with `EIO`, `list` and
    /// `read`.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

    /// Cuts the power after `calls` further calls: each later one fails with `EIO`, and writes since now that were not
    /// synchronised are lost as far as a disk may lose them.
    void cutPowerAfter(std::uint64_t calls);

    /// The power is back; the disk is as the cut left it.
    void restorePower();
    [[nodiscard]] bool isPowerCut() const;

    [[nodiscard]] Counts counts() const;

private:
    class File;

    int begin(std::string_view fault, int error);
    bool beginReading(std::string_view fault);
    [[nodiscard]] bool isPowered();
    template <class Change> void keep(Change change);

    ports::FileSystem& disk_;
    FaultSwitches faults_{"create-directories", "create", "write", "synchronize", "rename", "list", "read", "remove"};
    mutable std::mutex mutex_;
    Counts counts_;
    std::optional<std::uint64_t> callsUntilCut_;
    bool isPowerCut_ = false;
    UnsettledWrites unsettled_; // kept only while a power cut is to come
};

} // namespace sentrel::simulation
