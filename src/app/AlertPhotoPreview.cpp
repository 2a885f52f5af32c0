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
    // The panel may be open with another photo, which is let go of only now.
    source_ = std::move(source);
    panel_.reloadData();
    panel_.makeKeyAndOrderFront();
}

} // namespace sentrel
