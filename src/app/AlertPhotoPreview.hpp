#pragma once

#include "app/AlertPhotoQuickLookDataSource.hpp"

#include <filesystem>
#include <memory>

namespace sentrel {

/// The photo in the shared preview panel, which does not keep what it shows. It outlives the panel's control of the
/// application. Main actor.
class AlertPhotoPreview {
public:
    explicit AlertPhotoPreview(platform::PreviewPanel& panel) : panel_(panel) {}
    AlertPhotoPreview(const AlertPhotoPreview&) = delete;
    ~AlertPhotoPreview();

    /// Shows this file in the panel, in front of the windows.
    void show(std::filesystem::path photo);

    /// The panel is controlled by this application from now on, or not any more: what it asks for then.
    void beginControl();
    void endControl();

private:
    platform::PreviewPanel& panel_;
    std::unique_ptr<AlertPhotoQuickLookDataSource> source_;
};

} // namespace sentrel
