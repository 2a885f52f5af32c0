#include "app/AlertPhotoPreview.hpp"

#include <utility>

namespace sentrel {

AlertPhotoPreview::~AlertPhotoPreview()
{
    if (source_ != nullptr) {
        panel_.setDataSource(nullptr);
    }
}

void AlertPhotoPreview::show(std::filesystem::path photo)
{
    auto source = std::make_unique<AlertPhotoQuickLookDataSource>(std::move(photo));
    panel_.setDataSource(source.get());
    // The panel may be showing another photo, so its source is released only now.
    source_ = std::move(source);
    panel_.reloadData();
    panel_.makeKeyAndOrderFront();
}

} // namespace sentrel
