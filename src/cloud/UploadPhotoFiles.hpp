#pragma once

#include "foundation/Bytes.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <filesystem>
#include <memory>
#include <string>

namespace sentrel {

namespace ports {
class FileSystem;
class GeneralRandom;
class HostInfo;
class UserDefaults;
} // namespace ports

/// Temporary files for uploading photos, each for one upload only. Their names are kept in the user defaults, so that
/// files left behind by a crash are deleted at the next launch. Main actor only.
class UploadPhotoFiles {
public:
    static constexpr const char* defaultsKey = "CloudKitService.uploadPhotoFiles";

    struct Ports {
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::UserDefaults& defaults;
        ports::GeneralRandom& random;
    };

    /// Deletes files that an earlier run left behind.
    UploadPhotoFiles(MainActor actor, Ports ports);
    UploadPhotoFiles(const UploadPhotoFiles&) = delete;

    /// One file, deleted by the destructor, or by its writer if that is still at work.
    class File {
    public:
        File(File&& other) noexcept = default;
        File& operator=(File&&) = delete;
        ~File();

        [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    private:
        friend class UploadPhotoFiles;
        struct Writing;
        File(Weak<UploadPhotoFiles> owner, std::filesystem::path path);

        Weak<UploadPhotoFiles> owner_;
        std::filesystem::path path_;
        std::shared_ptr<Writing> writing_; // null after a move
    };

    /// Writes the photo off the main thread into a new file for the user only. Throws `std::system_error`.
    [[nodiscard]] Async<File> write(Bytes photo);

private:
    [[nodiscard]] std::string newName();
    void sweep();
    void note(const std::string& name);
    void forget(const std::string& name);

    Ports ports_;
    const std::filesystem::path directory_;
    DetachedWork writing_;
    WeakAnchor<UploadPhotoFiles> anchor_{*this};
};

} // namespace sentrel
