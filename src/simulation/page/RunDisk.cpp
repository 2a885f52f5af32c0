#include "simulation/page/RunDisk.hpp"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace sentrel::simulation {

namespace {

namespace fs = std::filesystem;

fs::path makeTemporaryFolder()
{
    std::string name = (fs::temp_directory_path() / "sentrel-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error{"can't make a folder for the MacBook's disk"};
    }
    return name;
}

[[noreturn]] void refuse(const fs::path& folder, const std::error_code& error)
{
    throw std::runtime_error{"can't use '" + folder.string() + "' as the disk: " + error.message()};
}

/// Locks the folder itself, so that no lock file is left in it.
int lock(const fs::path& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        refuse(folder, {errno, std::generic_category()});
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        ::close(descriptor);
        if (error == EWOULDBLOCK) {
            throw std::runtime_error{"the disk '" + folder.string() + "' is in use by another sentrel-simulator"};
        }
        refuse(folder, {error, std::generic_category()});
    }
    return descriptor;
}

} // namespace

RunDisk::RunDisk(const std::optional<fs::path>& wanted) : isTemporary_(!wanted)
{
    if (isTemporary_) {
        path_ = makeTemporaryFolder();
        return;
    }
    path_ = *wanted;
    std::error_code error;
    fs::create_directories(path_, error);
    if (error) {
        refuse(path_, error);
    }
    lock_ = lock(path_);
}

RunDisk::~RunDisk()
{
    if (lock_ >= 0) {
        ::close(lock_);
    }
    if (isTemporary_) {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
}

} // namespace sentrel::simulation
