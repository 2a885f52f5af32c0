#pragma once

#include "core/AlertEvent.hpp"
#include "foundation/Bytes.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace sentrel {

class AlertPhotoPreview;

namespace ports {
class Calendar;
class FileSystem;
class HostInfo;
class ImageCodec;
class Language;
class SavePanels;
} // namespace ports

/// Takes an alert's photo out of the application as a JPEG file: into the preview panel, or where the user wants it.
/// One at a time. Main actor.
class AlertPhotoExport {
public:
    using Photo = std::shared_ptr<const Bytes>;

    struct Ports {
        ports::Calendar& calendar;
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::ImageCodec& imageCodec;
        ports::Language& language;
        ports::SavePanels& savePanels;
    };

    AlertPhotoExport(MainActor actor, AlertPhotoPreview& preview, Ports ports);
    AlertPhotoExport(const AlertPhotoExport&) = delete;

    /// Why the photo couldn't be taken out, for the user.
    struct Failure {
        std::string title;
        std::string message;
    };

    /// Called when `isBusy` or `failure` has changed.
    std::function<void()> onChange;

    [[nodiscard]] bool isBusy() const { return isBusy_; }
    [[nodiscard]] const std::optional<Failure>& failure() const { return failure_; }

    /// The user has read it.
    void forgetFailure();

    /// Nothing happens while another photo is under way.
    void preview(const AlertEvent& alert, Photo photo);
    void save(const AlertEvent& alert, Photo photo);

private:
    /// What became of the file: whether there was a JPEG, and the `errno` value of its writing.
    struct Written {
        bool isConverted = false;
        int error = 0;
    };

    Async<void> previewNow(std::string name, Photo photo);
    Async<void> saveAs(std::string name, Photo photo);
    [[nodiscard]] Task<Written> write(std::filesystem::path file, const std::string& name,
                                      std::optional<std::uint32_t> mode, Photo photo);
    void start(Async<void> work);
    void finish(std::string title, const Written& written);
    void changed();

    MainActor actor_;
    AlertPhotoPreview& preview_;
    Ports ports_;
    bool isBusy_ = false;
    std::optional<Failure> failure_;
    DetachedWork conversions_;
    TaskBag tasks_;
};

} // namespace sentrel
