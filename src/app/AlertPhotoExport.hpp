#pragma once

#include "app/ChangeReporter.hpp"
#include "core/AlertEvent.hpp"
#include "foundation/Bytes.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <filesystem>
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

/// Exports an alert's photo as a JPEG file: to the preview panel, or to a place that the user chooses. One at a time.
/// Reports changes of `isBusy` and `failure`. Main actor.
class AlertPhotoExport final : public ChangeReporter {
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

    /// The reason why the export failed, for the user.
    struct Failure {
        std::string title;
        std::string message;
    };

    [[nodiscard]] bool isBusy() const { return isBusy_; }
    [[nodiscard]] const std::optional<Failure>& failure() const { return failure_; }

    /// Call when the user has dismissed the failure.
    void forgetFailure();

    /// No effect while another export is under way.
    void preview(const AlertEvent& alert, Photo photo);
    void save(const AlertEvent& alert, Photo photo);

private:
    /// The outcome of writing a file: whether there was a JPEG, and an `errno` value or 0.
    struct Written {
        bool isConverted = false;
        int error = 0;
    };

    Async<void> previewNow(std::string name, Photo photo);
    Async<void> saveAs(std::string name, Photo photo);
    [[nodiscard]] Task<Written> write(std::filesystem::path file, const std::string& name,
                                      std::optional<std::uint32_t> mode, Photo photo);
    void start(Async<void> work);
    Async<void> untilItsEnd(Async<void> work);
    void finish(std::string title, const Written& written);

    MainActor actor_;
    AlertPhotoPreview& preview_;
    Ports ports_;
    bool isBusy_ = false;
    std::optional<Failure> failure_;
    DetachedWork conversions_;
    TaskBag tasks_;
};

} // namespace sentrel
