#pragma once

#include <filesystem>
#include <optional>

namespace sentrel::simulation {

/// The folder that is a run's disk, and no other run's meanwhile: one that is given, or a temporary one that goes away
/// with this. The lock ends with the process, however it ends.
class RunDisk {
public:
    /// Throws `std::runtime_error` in plain words when the folder can't be used, or another run uses it.
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
