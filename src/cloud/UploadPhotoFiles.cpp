#include "cloud/UploadPhotoFiles.hpp"

#include "core/RandomUUID.hpp"
#include "foundation/Quietly.hpp"
#include "foundation/UUID.hpp"
#include "ports/FileSystem.hpp"
#include "ports/HostInfo.hpp"
#include "ports/UserDefaults.hpp"

#include <cerrno>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace sentrel {

namespace {

constexpr std::uint32_t directoryMode = 0700;
constexpr std::uint32_t fileMode = 0600;
constexpr std::string_view extension = ".jpg";

/// Whether the name is one of ours: the defaults must not make us delete anything else.
bool isPhotoFileName(std::string_view name)
{
    return name.ends_with(extension) && UUID::parse(name.substr(0, name.size() - extension.size())).has_value();
}

} // namespace

/// State of a file being written, shared by the main thread and the writer.
struct UploadPhotoFiles::File::Writing {
    std::mutex lock;
    bool hasBegun = false;
    bool hasEnded = false;
    bool isUnwanted = false;

    /// Returns 0 or an `errno` value.
    int write(ports::FileSystem& files, const std::filesystem::path& file, BytesView photo)
    {
        if (!begin()) {
            return ECANCELED;
        }
        files.createDirectories(file.parent_path(), directoryMode);
        int error = 0;
        if (const auto open = files.create(file, fileMode, error)) {
            error = open->write(photo);
        }
        end(files, file);
        return error;
    }

    /// True when the writer will delete the file.
    bool discard()
    {
        const std::lock_guard guard{lock};
        isUnwanted = true;
        return hasBegun && !hasEnded;
    }

private:
    bool begin()
    {
        const std::lock_guard guard{lock};
        hasBegun = !isUnwanted;
        return hasBegun;
    }
    void end(ports::FileSystem& files, const std::filesystem::path& file)
    {
        const std::lock_guard guard{lock};
        hasEnded = true;
        if (isUnwanted) {
            files.remove(file);
        }
    }
};

UploadPhotoFiles::File::File(Weak<UploadPhotoFiles> owner, std::filesystem::path path)
    : owner_(std::move(owner)), path_(std::move(path)), writing_(std::make_shared<Writing>())
{
}

UploadPhotoFiles::File::~File()
{
    UploadPhotoFiles* const owner = owner_.get();
    if (writing_ == nullptr || owner == nullptr) {
        return; // the process is ending: the next launch cleans up
    }
    if (writing_->discard()) {
        return; // the name stays recorded in case the writer dies first
    }
    quietly([&] {
        const int error = owner->ports_.files.remove(path_);
        if (error == 0 || error == ENOENT) {
            owner->forget(path_.filename().string());
        }
    });
}

UploadPhotoFiles::UploadPhotoFiles(MainActor actor, Ports ports)
    : ports_(ports), directory_(ports.host.temporaryDirectory()), writing_(actor.scheduler())
{
    sweep();
}

Async<UploadPhotoFiles::File> UploadPhotoFiles::write(Bytes photo)
{
    const std::string name = newName();
    note(name);
    File file{anchor_.weak(), directory_ / name};
    auto work = [writing = file.writing_, &files = ports_.files, path = file.path_, content = std::move(photo)] {
        return writing->write(files, path, content);
    };
    const Task<int> written = writing_.start(QualityOfService::userInitiated, std::move(work));
    const int error = co_await written;
    if (error != 0) {
        throw std::system_error{error, std::generic_category(), "writing a photo for its upload"};
    }
    co_return std::move(file);
}

std::string UploadPhotoFiles::newName()
{
    return randomUUID(ports_.random).text() + std::string{extension};
}

void UploadPhotoFiles::sweep()
{
    const auto names = ports_.defaults.texts(defaultsKey);
    if (!names) {
        return;
    }
    std::vector<std::string> remaining;
    for (const std::string& name : *names) {
        const int error = isPhotoFileName(name) ? ports_.files.remove(directory_ / name) : 0;
        if (error != 0 && error != ENOENT) {
            remaining.push_back(name);
        }
    }
    if (remaining.empty()) {
        ports_.defaults.remove(defaultsKey);
    } else {
        ports_.defaults.setTexts(defaultsKey, remaining);
    }
}

void UploadPhotoFiles::note(const std::string& name)
{
    auto names = ports_.defaults.texts(defaultsKey).value_or(std::vector<std::string>{});
    names.push_back(name);
    ports_.defaults.setTexts(defaultsKey, names);
}

void UploadPhotoFiles::forget(const std::string& name)
{
    auto names = ports_.defaults.texts(defaultsKey).value_or(std::vector<std::string>{});
    std::erase(names, name);
    if (names.empty()) {
        ports_.defaults.remove(defaultsKey);
    } else {
        ports_.defaults.setTexts(defaultsKey, names);
    }
}

} // namespace sentrel
