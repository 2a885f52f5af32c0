#include "outputs/PhotoCaptureDelegate.hpp"

#include "foundation/Quietly.hpp"

#include <utility>

namespace sentrel {

PhotoCaptureDelegate::PhotoCaptureDelegate(ports::StandardOutput& output, Completion completion)
    : output_(output), completion_(std::move(completion))
{
}

void PhotoCaptureDelegate::didFinishProcessingPhoto(const ports::CapturedPhoto& photo, std::optional<std::string> error)
{
    if (error) {
        quietly([&] { output_.printLine("Photo capture error: " + *error); });
        completion_(std::nullopt);
        return;
    }
    completion_(quietly([&photo] { return photo.fileDataRepresentation(); }));
}

} // namespace sentrel
