#pragma once

#include "platform/Camera.hpp"
#include "platform/StandardOutput.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel {

/// Receives one photo and hands it on. Called on a thread of the system's choice.
class PhotoCaptureDelegate final : public platform::PhotoOutputDelegate {
public:
    using Completion = std::function<void(std::optional<Bytes> photo)>;

    PhotoCaptureDelegate(platform::StandardOutput& output, Completion completion);

    /// Prints an error and completes without data; otherwise completes with the photo's file, which may be absent.
    void didFinishProcessingPhoto(const platform::CapturedPhoto& photo, std::optional<std::string> error) override;

private:
    platform::StandardOutput& output_;
    const Completion completion_;
};

} // namespace sentrel
