#include "posix/PosixFileSystem.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace sentrel::posix {

namespace {

// The mode of a file that is created without an explicit one; the umask applies to it.
constexpr mode_t usualMode = 0666;

/// Makes a call that returns -1 on failure; repeats it while signals interrupt it.
template <class Call> auto uninterrupted(Call call)
{
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) {
            return result;
        }
    }
}

/// The `errno` value of a call that returned this result; 0 when it succeeded.
int errorOf(int result)
{
    return result == -1 ? errno : 0;
}

/// A file descriptor, closed on destruction. Not open if opening failed; `errno` has the reason.
class Descriptor {
public:
    Descriptor(const std::filesystem::path& path, int flags, mode_t mode = 0)
        : number_(uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); }))
    {
    }
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor()
    {
        if (isOpen()) {
            ::close(number_); // not repeated: the number is free even after EINTR
        }
    }

    [[nodiscard]] bool isOpen() const { return number_ != -1; }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

int synchronizeToMedium(int descriptor)
{
#ifdef F_FULLFSYNC
    // On macOS, fsync leaves the bytes in the drive's cache. Some file systems (network volumes) support only fsync.
    if (uninterrupted([&] { return ::fcntl(descriptor, F_FULLFSYNC); }) != -1) {
        return 0;
    }
#endif
    return errorOf(uninterrupted([&] { return ::fsync(descriptor); }));
}

class PosixWritableFile final : public ports::WritableFile {
public:
    explicit PosixWritableFile(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    int write(BytesView bytes) override
    {
        while (!bytes.empty()) {
            const ssize_t written =
                uninterrupted([&] { return ::write(descriptor_.number(), bytes.data(), bytes.size()); });
            if (written == -1) {
                return errno;
            }
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
        return 0;
    }

    int synchronize() override { return synchronizeToMedium(descriptor_.number()); }

private:
    Descriptor descriptor_;
};

bool isDirectory(const std::filesystem::path& path)
{
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Creates one folder. Returns an `errno` value; 0 also if it exists.
int createDirectory(const std::filesystem::path& directory, mode_t mode)
{
    if (::mkdir(directory.c_str(), mode) == 0) {
        return errorOf(::chmod(directory.c_str(), mode)); // mkdir applies the umask
    }
    if (errno != EEXIST) {
        return errno;
    }
    return isDirectory(directory) ? 0 : ENOTDIR;
}

} // namespace

int PosixFileSystem::createDirectories(const std::filesystem::path& directory, std::uint32_t mode)
{
    const auto bits = static_cast<mode_t>(mode);
    const int error = createDirectory(directory, bits);
    if (error != ENOENT || !directory.has_relative_path() || !directory.has_parent_path()) {
        return error;
    }
    const int parentError = createDirectories(directory.parent_path(), mode);
    return parentError != 0 ? parentError : createDirectory(directory, bits);
}

std::optional<std::vector<std::string>> PosixFileSystem::list(const std::filesystem::path& directory)
{
    std::error_code error;
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry{directory, error}, end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    if (error) {
        return std::nullopt;
    }
    return names;
}

std::optional<Bytes> PosixFileSystem::read(const std::filesystem::path& file)
{
    const Descriptor descriptor{file, O_RDONLY};
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    // Read to the end rather than to the size that the file had: another process may be changing it.
    Bytes content;
    std::array<std::uint8_t, 65536> chunk;
    for (;;) {
        const ssize_t count = uninterrupted([&] { return ::read(descriptor.number(), chunk.data(), chunk.size()); });
        if (count == -1) {
            return std::nullopt;
        }
        if (count == 0) {
            return content;
        }
        content.insert(content.end(), chunk.begin(), chunk.begin() + count);
    }
}

bool PosixFileSystem::exists(const std::filesystem::path& file)
{
    struct stat status{};
    return ::stat(file.c_str(), &status) == 0;
}

std::unique_ptr<ports::WritableFile> PosixFileSystem::create(const std::filesystem::path& file,
                                                             std::optional<std::uint32_t> mode, int& error)
{
    const auto bits = static_cast<mode_t>(mode.value_or(usualMode));
    Descriptor descriptor{file, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_NOFOLLOW, bits};
    if (!descriptor.isOpen()) {
        error = errno;
        return nullptr;
    }
    // Overrides the umask and the mode of an existing file before any byte is written.
    error = mode ? errorOf(::fchmod(descriptor.number(), bits)) : 0;
    if (error != 0) {
        return nullptr;
    }
    return std::make_unique<PosixWritableFile>(std::move(descriptor));
}

int PosixFileSystem::rename(const std::filesystem::path& from, const std::filesystem::path& to)
{
    return errorOf(::rename(from.c_str(), to.c_str()));
}

int PosixFileSystem::synchronizeDirectory(const std::filesystem::path& directory)
{
    const Descriptor descriptor{directory, O_RDONLY | O_DIRECTORY};
    return descriptor.isOpen() ? synchronizeToMedium(descriptor.number()) : errno;
}

int PosixFileSystem::remove(const std::filesystem::path& file)
{
    return errorOf(::unlink(file.c_str()));
}

} // namespace sentrel::posix
