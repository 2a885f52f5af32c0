#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "simulation/mac/camera/RgbxImage.hpp"

#include <memory>
#include <mutex>
#include <optional>

namespace sentrel::simulation {

/// A small picture of the cafe, for display.
struct CafePreview {
    std::shared_ptr<const Bytes> jpeg;
    double brightness = 0.0; ///< 0 to 1, that of a photo
};

/// The scene before the camera: a cafe at the time of day, its clock on the wall, and a person at the Mac. Any thread.
class CafeScene {
public:
    static constexpr int width = 1920;
    static constexpr int height = 1080;

    /// A JPEG of the scene at this time of the clock, to the minute. It has the given brightness (0 to 1), or that of
    /// the hour's light. Equal calls give equal bytes.
    /// The sides are divided by `share`.
    [[nodiscard]] Bytes photograph(Date date, std::optional<double> brightness, int share = 1);

    /// A small picture of the scene, for display; the same object as long as nothing changes.
    [[nodiscard]] CafePreview preview(Date date, std::optional<double> brightness);

private:
    std::mutex mutex_;
    int photoMinute_ = -1;
    std::optional<double> photoBrightness_;
    int photoShare_ = 1;
    Bytes photo_; // kept because drawing takes long; the picture itself is many times larger
    int previewMinute_ = -1;
    std::optional<double> previewBrightness_;
    CafePreview preview_;
};

/// Draws the scene at a minute of the day, with the sides divided by `share`.
[[nodiscard]] RgbxImage drawCafe(int minuteOfDay, int share);

/// Brightens or darkens the image evenly until its mean luma (ITU-R BT.709) is this, 0 to 1.
void expose(RgbxImage& image, double brightness);

} // namespace sentrel::simulation
