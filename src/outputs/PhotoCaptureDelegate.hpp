#pragma once

#include "ports/Camera.hpp"
#include "ports/StandardOutput.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel {

/// Receives one photo and hands it on. Called on a thread of the system's choice.
class PhotoCaptureDelegate final : public ports::PhotoOutputDelegate {
public:
    using Completion = std::function<void(std::optional<Bytes> photo)>;

    PhotoCaptureDelegate(ports::StandardOutput& output, Completion completion);

    /// Completes with the photo's file, which may be absent; after an error, prints it and completes without data.
    void didFinishProcessingPhoto(const ports::CapturedPhoto& photo, std::optional<std::string> error) override;

private:
    ports::StandardOutput& output_;
    const Completion completion_;
};

} // namespace sentrel
