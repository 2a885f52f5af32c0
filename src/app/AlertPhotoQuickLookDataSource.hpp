#pragma once

#include "ports/PreviewPanel.hpp"

#include <filesystem>
#include <utility>

namespace sentrel {

/// The preview panel's data source: one item, the temporary file of an alert's photo.
class AlertPhotoQuickLookDataSource final : public ports::PreviewDataSource {
public:
    explicit AlertPhotoQuickLookDataSource(std::filesystem::path photo) : photo_(std::move(photo)) {}

    [[nodiscard]] std::size_t numberOfItems() override { return 1; }
    [[nodiscard]] std::filesystem::path itemAt(std::size_t /*index*/) override { return photo_; }

private:
    std::filesystem::path photo_;
};

} // namespace sentrel
