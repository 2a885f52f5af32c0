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

/// The temporary files through which photos travel into the cloud: each exists for one upload only. The names of those
/// that exist stand in the user defaults, so that what a crash leaves behind is deleted at the next launch. Main actor
/// only.
class UploadPhotoFiles {
public:
    static constexpr const char* defaultsKey = "CloudKitService.uploadPhotoFiles";

    struct Ports {
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::UserDefaults& defaults;
        ports::GeneralRandom& random;
    };

    /// Deletes what an earlier run left behind.
    UploadPhotoFiles(MainActor actor, Ports ports);
    UploadPhotoFiles(const UploadPhotoFiles&) = delete;

    /// One file, deleted at this object's end; also when its writing is still under way, and then by the writer.
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
        std::shared_ptr<Writing> writing_; // null in a file that was moved from
    };

    /// Writes the photo into a new file, for the user's eyes only and off the main thread. Throws `std::system_error`.
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
