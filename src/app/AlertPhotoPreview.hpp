#pragma once

#include "app/AlertPhotoQuickLookDataSource.hpp"

#include <filesystem>
#include <memory>

namespace sentrel {

/// The photo in the shared preview panel, which doesn't own what it shows. Must outlive the panel's control by the
/// application. Main actor.
class AlertPhotoPreview {
public:
    explicit AlertPhotoPreview(ports::PreviewPanel& panel) : panel_(panel) {}
    AlertPhotoPreview(const AlertPhotoPreview&) = delete;
    ~AlertPhotoPreview();

    /// Shows this file in the panel, in front of the windows.
    void show(std::filesystem::path photo);

    /// The panel's source while the application controls it; null before a photo was shown.
    [[nodiscard]] ports::PreviewDataSource* dataSource() const { return source_.get(); }

private:
    ports::PreviewPanel& panel_;
    std::unique_ptr<AlertPhotoQuickLookDataSource> source_;
};

} // namespace sentrel
