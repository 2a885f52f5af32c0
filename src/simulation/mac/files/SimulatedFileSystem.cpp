#include "simulation/mac/files/SimulatedFileSystem.hpp"

#include <cerrno>
#include <utility>

namespace sentrel::simulation {

class SimulatedFileSystem::File final : public ports::WritableFile {
public:
    File(SimulatedFileSystem& files, std::filesystem::path path, std::unique_ptr<ports::WritableFile> file)
        : files_(files), path_(std::move(path)), file_(std::move(file))
    {
    }

    [[nodiscard]] int write(BytesView bytes) override
    {
        const int refused = files_.begin("write", ENOSPC);
        if (refused == EIO) {
            return refused;
        }
        // A full disk still takes the first half.
        const int error = file_->write(refused == 0 ? bytes : bytes.first(bytes.size() / 2));
        files_.keep([this](UnsettledWrites& unsettled) { unsettled.wrote(path_); });
        return refused != 0 ? refused : error;
    }

    [[nodiscard]] int synchronize() override
    {
        const int error = files_.begin("synchronize", EIO);
        if (error == 0) {
            files_.keep([this](UnsettledWrites& unsettled) { unsettled.synchronized(path_); });
        }
        return error;
    }

private:
    SimulatedFileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<ports::WritableFile> file_;
};

int SimulatedFileSystem::createDirectories(const std::filesystem::path& directory, std::uint32_t mode)
{
    const int error = begin("create-directories", EACCES);
    return error != 0 ? error : disk_.createDirectories(directory, mode);
}

std::optional<std::vector<std::string>> SimulatedFileSystem::list(const std::filesystem::path& directory)
{
    return beginReading("list") ? disk_.list(directory) : std::nullopt;
}

std::optional<Bytes> SimulatedFileSystem::read(const std::filesystem::path& file)
{
    return beginReading("read") ? disk_.read(file) : std::nullopt;
}

bool SimulatedFileSystem::exists(const std::filesystem::path& file)
{
    return beginReading({}) && disk_.exists(file);
}

std::unique_ptr<ports::WritableFile> SimulatedFileSystem::create(const std::filesystem::path& file,
                                                                 std::optional<std::uint32_t> mode, int& error)
{
    error = begin("create", EACCES);
    if (error != 0) {
        return nullptr;
    }
    auto open = disk_.create(file, mode, error);
    if (open == nullptr) {
        return nullptr;
    }
    keep([&](UnsettledWrites& unsettled) { unsettled.wrote(file); });
    return std::make_unique<File>(*this, file, std::move(open));
}

int SimulatedFileSystem::rename(const std::filesystem::path& from, const std::filesystem::path& to)
{
    int error = begin("rename", EACCES);
    if (error != 0) {
        return error;
    }
    std::optional<Bytes> replaced;
    keep([&](UnsettledWrites&) { replaced = disk_.read(to); });
    error = disk_.rename(from, to);
    if (error == 0) {
        keep([&](UnsettledWrites& unsettled) { unsettled.renamed(from, to, std::move(replaced)); });
    }
    return error;
}

int SimulatedFileSystem::synchronizeDirectory(const std::filesystem::path& directory)
{
    int error = begin("synchronize", EIO);
    if (error != 0) {
        return error;
    }
    error = disk_.exists(directory) ? 0 : ENOENT;
    if (error == 0) {
        keep([&](UnsettledWrites& unsettled) { unsettled.synchronizedDirectory(directory); });
    }
    return error;
}

int SimulatedFileSystem::remove(const std::filesystem::path& file)
{
    int error = begin("remove", EACCES);
    if (error != 0) {
        return error;
    }
    error = disk_.remove(file);
    if (error == 0) {
        keep([&](UnsettledWrites& unsettled) { unsettled.removed(file); });
    }
    return error;
}

void SimulatedFileSystem::cutPowerAfter(std::uint64_t calls)
{
    const std::lock_guard guard{mutex_};
    callsUntilCut_ = calls;
}

void SimulatedFileSystem::restorePower()
{
    const std::lock_guard guard{mutex_};
    if (callsUntilCut_ && *callsUntilCut_ == 0) {
        // Also if no call followed the last one that had power.
        unsettled_.lose(disk_);
    }
    callsUntilCut_.reset();
    isPowerCut_ = false;
    unsettled_ = {};
}

bool SimulatedFileSystem::isPowerCut() const
{
    const std::lock_guard guard{mutex_};
    return isPowerCut_;
}

SimulatedFileSystem::Counts SimulatedFileSystem::counts() const
{
    const std::lock_guard guard{mutex_};
    return counts_;
}

int SimulatedFileSystem::begin(std::string_view fault, int error)
{
    faults_.call(fault.empty() ? "exists" : fault);
    {
        const std::lock_guard guard{mutex_};
        ++counts_.calls;
        if (!isPowered()) {
            return EIO;
        }
    }
    return !fault.empty() && faults_.strikes(fault) ? error : 0;
}

bool SimulatedFileSystem::beginReading(std::string_view fault)
{
    {
        const std::lock_guard guard{mutex_};
        ++counts_.reads;
    }
    return begin(fault, EACCES) == 0;
}

// Counts the call against a power cut to come. Under the lock.
bool SimulatedFileSystem::isPowered()
{
    if (!callsUntilCut_) {
        return true;
    }
    if (*callsUntilCut_ > 0) {
        --*callsUntilCut_;
        return true;
    }
    if (!isPowerCut_) {
        isPowerCut_ = true;
        unsettled_.lose(disk_);
    }
    return false;
}

template <class Change> void SimulatedFileSystem::keep(Change change)
{
    const std::lock_guard guard{mutex_};
    if (callsUntilCut_ && !isPowerCut_) {
        change(unsettled_);
    }
}

} // namespace sentrel::simulation
