#pragma once

#include <filesystem>
#include <optional>

namespace sentrel::simulation {

/// A run's disk, locked against other runs: the given folder, or a temporary one that is removed with this object. The
/// lock ends with the process, however it ends.
class RunDisk {
public:
    /// Throws `std::runtime_error` in plain words if the folder can't be used, or another run is using it.
    explicit RunDisk(const std::optional<std::filesystem::path>& wanted);
    ~RunDisk();
    RunDisk(const RunDisk&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    bool isTemporary_;
    std::filesystem::path path_;
    int lock_ = -1;
};

} // namespace sentrel::simulation
